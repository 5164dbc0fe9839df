// The demo's scene schedule as plain records: which effect runs when, read off the timeline.
#pragma once

#include <ostream>
#include <string>
#include <vector>

class EffectMgr;

struct ScheduleEntry {
    int number;        // 1-based, in the order the driver added the effects
    std::string name;  // the effect's class
    float start;
    float end;
    short layer;
};

class Schedule {
public:
    // Reads every effect not started yet; call before the first update to get them all.
    void read(const EffectMgr& effects);
    void add(const ScheduleEntry& entry) { entries.push_back(entry); }

    const std::vector<ScheduleEntry>& getEntries() const { return entries; }
    bool isEmpty() const { return entries.empty(); }
    // The latest end of any entry; 0 for an empty schedule.
    double getEnd() const;
    // The latest start of any entry, when the last scene begins; 0 for an empty schedule.
    double getLastStart() const;

    // The scenes running at `seconds`, fades left out, joined with " + "; "no scene" where none runs.
    std::string scenesAt(double seconds) const;
    // The moment that shows an entry best: the middle of a scene; three quarters into a fade, where the scene
    // it opens shows through (at its middle a fade is its plain colour, and a scene may end in black under it).
    static double stillTime(const ScheduleEntry& entry);
    // Fades cover scene cuts; they are no scenes of their own.
    static bool isFade(const ScheduleEntry& entry) { return entry.name == FADE_CLASS; }
    static constexpr const char* FADE_CLASS = "Fader";

    // One line per entry: number, start, end, layer, class.
    void print(std::ostream& out) const;

private:
    std::vector<ScheduleEntry> entries;
};
