// Drawing the progress bar.
#include "ProgressBar.h"

#include <unistd.h>

namespace {

const int BAR_WIDTH = 40;

int percentOf(size_t done, size_t total)
{
    if (total == 0)
        return 100;
    if (done >= total)
        return 100;
    return static_cast<int>(done * 100 / total);
}

}

ProgressBar::ProgressBar(FILE* stream)
    : out(stream), total(0), done(0), shownPercent(-1), visible(false)
{
}

std::string ProgressBar::render(const std::string& label, size_t done, size_t total)
{
    int percent = percentOf(done, total);
    int filled = percent * BAR_WIDTH / 100;
    std::string bar = label + " [";
    bar.append(static_cast<size_t>(filled), '#');
    bar.append(static_cast<size_t>(BAR_WIDTH - filled), '.');
    bar += "] " + std::to_string(percent) + "% " + std::to_string(done < total ? done : total) + "/" +
           std::to_string(total);
    return bar;
}

void ProgressBar::start(const std::string& text, size_t steps)
{
    label = text;
    total = steps;
    done = 0;
    shownPercent = -1;
    // Logs and pipes get no carriage-return noise; a terminal gets the bar.
    visible = out && steps >= MIN_STEPS && isatty(fileno(out));
    draw();
}

void ProgressBar::advance()
{
    if (!visible)
        return;
    ++done;
    draw();
}

void ProgressBar::draw()
{
    if (!visible)
        return;
    int percent = percentOf(done, total);
    if (percent == shownPercent)
        return;
    shownPercent = percent;
    std::fprintf(out, "\r%s", render(label, done, total).c_str());
    std::fflush(out);
}

void ProgressBar::finish()
{
    if (!visible)
        return;
    std::fprintf(out, "\r%s\n", render(label, total, total).c_str());
    std::fflush(out);
    visible = false;
}
