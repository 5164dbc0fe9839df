// Reading and printing the scene schedule.
#include "Schedule.h"

#include "runtime/Effect.h"
#include "runtime/EffectMgr.h"

#include <cxxabi.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <typeinfo>

namespace {

std::string className(const Effect& effect)
{
    const char* mangled = typeid(effect).name();
    int status = 0;
    char* plain = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string name = (status == 0 && plain) ? plain : mangled;
    std::free(plain);
    return name;
}

}  // namespace

void Schedule::read(const EffectMgr& effects)
{
    entries.clear();
    effects.forEachPending([this](const Effect& effect) {
        const EffectTimer& span = effect.getTimer();
        entries.push_back(ScheduleEntry{0, className(effect), span.start, span.end, effect.getLayer()});
    });
    // The timeline keeps the latest addition at its head.
    std::reverse(entries.begin(), entries.end());
    for (size_t i = 0; i < entries.size(); ++i)
        entries[i].number = static_cast<int>(i + 1);
}

double Schedule::getEnd() const
{
    double end = 0.0;
    for (const ScheduleEntry& entry : entries)
        end = std::max(end, static_cast<double>(entry.end));
    return end;
}

double Schedule::getLastStart() const
{
    double start = 0.0;
    for (const ScheduleEntry& entry : entries)
        start = std::max(start, static_cast<double>(entry.start));
    return start;
}

std::string Schedule::scenesAt(double seconds) const
{
    std::string names;
    for (const ScheduleEntry& entry : entries) {
        if (isFade(entry) || seconds < entry.start || seconds >= entry.end)
            continue;
        names += (names.empty() ? "" : " + ") + entry.name;
    }
    return names.empty() ? "no scene" : names;
}

double Schedule::stillTime(const ScheduleEntry& entry)
{
    const double share = isFade(entry) ? 0.75 : 0.5;
    return entry.start + (static_cast<double>(entry.end) - entry.start) * share;
}

void Schedule::print(std::ostream& out) const
{
    char line[160];
    for (const ScheduleEntry& entry : entries) {
        std::snprintf(line, sizeof line, "%3d %9.3f %9.3f %5d %s\n", entry.number, entry.start, entry.end, entry.layer,
                      entry.name.c_str());
        out << line;
    }
}
