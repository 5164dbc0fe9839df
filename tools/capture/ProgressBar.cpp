// Drawing the progress bar.
#include "ProgressBar.h"

#include <unistd.h>
#include <algorithm>
#include <cmath>

namespace {

const int BAR_WIDTH = 24;
// Weight of the newest measurement in the recent rate.
const double RATE_SMOOTHING = 0.3;
// Erases what a longer previous line left at the right.
const char* const CLEAR_TO_END = "\033[K";

int percentOf(size_t done, size_t total)
{
    if (total == 0 || done >= total)
        return 100;
    return static_cast<int>(done * 100 / total);
}

}  // namespace

ProgressBar::ProgressBar(FILE* stream)
    : out(stream), total(0), done(0), shownPercent(-1), shownAt(0.0), shownDone(0), firstStepAt(0.0), recentRate(0.0),
      visible(false)
{
}

std::string ProgressBar::minutes(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0)
        return "--:--";
    const long whole = std::lround(seconds);
    char text[32];
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}

std::string ProgressBar::render(const std::string& label, size_t done, size_t total, double stepsPerSecond,
                                double secondsLeft, const std::string& detail)
{
    const int percent = percentOf(done, total);
    const int filled = percent * BAR_WIDTH / 100;
    std::string bar = label + " [";
    bar.append(static_cast<size_t>(filled), '#');
    bar.append(static_cast<size_t>(BAR_WIDTH - filled), '.');
    bar += "] " + std::to_string(percent) + "%";
    if (!detail.empty())
        bar += "  " + detail;
    char figures[64];
    std::snprintf(figures, sizeof figures, "  %.1f fps  %s left", stepsPerSecond, minutes(secondsLeft).c_str());
    return bar + figures;
}

void ProgressBar::start(const std::string& text, size_t steps, std::function<std::string()> describe)
{
    label = text;
    detail = std::move(describe);
    total = steps;
    done = 0;
    shownPercent = -1;
    shownAt = 0.0;
    shownDone = 0;
    firstStepAt = 0.0;
    recentRate = 0.0;
    started = std::chrono::steady_clock::now();
    // Logs and pipes get no carriage-return noise; a terminal gets the bar.
    visible = out && steps >= MIN_STEPS && isatty(fileno(out));
    draw(true);
}

void ProgressBar::advance()
{
    if (!visible)
        return;
    // Rates are measured from the first step on.
    if (++done == 1) {
        firstStepAt = shownAt = elapsed();
        shownDone = done;
    }
    draw(false);
}

void ProgressBar::tick()
{
    if (visible && due())
        draw(true);
}

bool ProgressBar::due() const
{
    return elapsed() - shownAt >= REDRAW_SECONDS;
}

double ProgressBar::elapsed() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

void ProgressBar::draw(bool force)
{
    if (!visible)
        return;
    const int percent = percentOf(done, total);
    if (!force && percent == shownPercent && !due())
        return;
    const double now = elapsed();
    if (now > shownAt && done > shownDone) {
        const double rate = static_cast<double>(done - shownDone) / (now - shownAt);
        recentRate = recentRate == 0.0 ? rate : recentRate + RATE_SMOOTHING * (rate - recentRate);
    }
    shownPercent = percent;
    shownAt = now;
    shownDone = done;
    // The time left follows the whole run's pace, steadier than the recent rate across cheap and costly scenes.
    const double perStep = done > 0 ? (now - firstStepAt) / static_cast<double>(done) : 0.0;
    const double left = perStep > 0.0 ? perStep * static_cast<double>(total - std::min(done, total)) : -1.0;
    const std::string text = render(label, done, total, recentRate, left, detail ? detail() : std::string());
    std::fprintf(out, "\r%s%s", text.c_str(), CLEAR_TO_END);
    std::fflush(out);
}

void ProgressBar::finish()
{
    if (!visible)
        return;
    draw(true);
    std::fputc('\n', out);
    std::fflush(out);
    visible = false;
}
