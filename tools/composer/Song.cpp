// Composes Velmora's soundtrack: instruments, themes and the arrangement of every section.
#include "tools/composer/Song.h"

#include "tools/composer/Score.h"
#include "tools/composer/Synth.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

// Channels, one job each so that sounds never cut each other off.
enum Channel { Kick, Snare, Hat, Perc, Cymbal, BassCh, Pad1, Pad2, Pad3, LeadCh, Lead2, Arp, Echo, Fx, Stab1, Stab2 };

const int kC4 = 49;
const int kBar = 16;
const uint8_t kPortaUp = 0x01;
const uint8_t kPortaDown = 0x02;
const uint8_t kVibrato = 0x04;
const uint8_t kRetrigger = 0x0E;

// Note number from a name such as "D5", "Bb4" or "C#6" (C-0 is 1).
int noteOf(const std::string& name)
{
    static const int letters[] = {9, 11, 0, 2, 4, 5, 7};  // A..G
    if (name.size() < 2 || name[0] < 'A' || name[0] > 'G')
        return 0;
    int pc = letters[name[0] - 'A'];
    size_t i = 1;
    if (name[i] == '#') {
        ++pc;
        ++i;
    } else if (name[i] == 'b') {
        --pc;
        ++i;
    }
    if (i >= name.size() || name[i] < '0' || name[i] > '9')
        return 0;
    return 1 + 12 * (name[i] - '0') + pc;
}

struct Chord {
    int root = 0;            // pitch class
    std::vector<int> tones;  // semitones above the root
};

Chord chordOf(const std::string& name)
{
    Chord c;
    c.root = (noteOf(name.substr(0, name.size() > 1 && (name[1] == 'b' || name[1] == '#') ? 2 : 1) + "4") - 1) % 12;
    const std::string kind = name.substr(name.size() > 1 && (name[1] == 'b' || name[1] == '#') ? 2 : 1);
    if (kind == "m")
        c.tones = {0, 3, 7};
    else if (kind == "m9")
        c.tones = {0, 3, 7, 10, 14};
    else if (kind == "maj7")
        c.tones = {0, 4, 7, 11};
    else
        c.tones = {0, 4, 7};
    return c;
}

std::vector<Chord> progression(const char* names)
{
    std::vector<Chord> out;
    std::string word;
    for (const char* p = names;; ++p) {
        if (*p && *p != ' ') {
            word += *p;
            continue;
        }
        if (!word.empty())
            out.push_back(chordOf(word));
        word.clear();
        if (!*p)
            break;
    }
    return out;
}

std::vector<Chord> transposed(std::vector<Chord> prog, int semitones)
{
    for (Chord& c : prog)
        c.root = (c.root + semitones + 120) % 12;
    return prog;
}

struct Ev {
    int note;    // 0 = rest
    int length;  // rows
};

// "D5:6 E5:2 r:4": note names (or r for a rest) with lengths in rows.
std::vector<Ev> phrase(const char* text)
{
    std::vector<Ev> out;
    std::string word;
    for (const char* p = text;; ++p) {
        if (*p && *p != ' ') {
            word += *p;
            continue;
        }
        const size_t colon = word.find(':');
        if (colon != std::string::npos) {
            const std::string name = word.substr(0, colon);
            out.push_back({name == "r" ? 0 : noteOf(name), std::atoi(word.c_str() + colon + 1)});
        }
        word.clear();
        if (!*p)
            break;
    }
    return out;
}

std::vector<Ev> shifted(std::vector<Ev> evs, int semitones)
{
    for (Ev& e : evs)
        if (e.note)
            e.note += semitones;
    return evs;
}

// Lowest note at or above `low` with the pitch class.
int place(int pc, int low)
{
    int n = low;
    while ((n - 1) % 12 != ((pc % 12) + 12) % 12)
        ++n;
    return n;
}

// Fixed-seed generator for the few choices left to chance.
struct Dice {
    uint32_t state;
    explicit Dice(uint32_t seed) : state(seed) {}
    int roll(int sides)
    {
        state = state * 1664525u + 1013904223u;
        return static_cast<int>((state >> 16) % static_cast<uint32_t>(sides));
    }
};

// The main theme: eight bars over Dm Bb F C Dm Bb C A, sixteen rows a bar.
const char* const kTheme =
    "D5:6 E5:2 F5:4 A5:4 "
    "G5:6 F5:2 D5:8 "
    "C5:4 F5:4 A5:6 G5:2 "
    "G5:8 E5:4 C5:4 "
    "D5:6 E5:2 F5:4 A5:4 "
    "Bb5:6 A5:2 G5:4 F5:4 "
    "E5:4 G5:4 C6:6 Bb5:2 "
    "A5:8 G5:2 F5:2 E5:4";
const char* const kThemeChords = "Dm Bb F C Dm Bb C A";

// Writing helpers over the score: rhythms, bass lines, chords, arpeggios, melodies.
class Writer {
public:
    explicit Writer(Score& s) : score(s) {}

    Score& score;

    // X full, x two thirds, o a third, anything else nothing; the rhythm repeats.
    static int accent(char c, int volume)
    {
        if (c == 'X')
            return volume;
        if (c == 'x')
            return volume * 2 / 3;
        if (c == 'o')
            return volume / 3;
        return 0;
    }

    void hits(int row, int rows, int ch, int ins, const char* rhythm, int volume, int note = kC4)
    {
        const int len = static_cast<int>(std::strlen(rhythm));
        for (int r = 0; r < rows && len; ++r) {
            const int v = accent(rhythm[r % len], volume);
            if (v > 0)
                score.note(row + r, ch, note, ins, v);
        }
    }

    // R root, r soft root, O/o octave, F fifth, '-' release; one rhythm per chord.
    void bassLine(int row, const std::vector<Chord>& prog, int rowsPer, const char* rhythm, int volume,
                  int ins = Synth::Bass, int low = noteOf("A1"))
    {
        const int len = static_cast<int>(std::strlen(rhythm));
        for (size_t i = 0; i < prog.size(); ++i) {
            const int base = place(prog[i].root, low);
            for (int r = 0; r < rowsPer && len; ++r) {
                const int at = row + static_cast<int>(i) * rowsPer + r;
                switch (rhythm[r % len]) {
                    case 'R':
                        score.note(at, BassCh, base, ins, volume);
                        break;
                    case 'r':
                        score.note(at, BassCh, base, ins, volume * 2 / 3);
                        break;
                    case 'O':
                        score.note(at, BassCh, base + 12, ins, volume);
                        break;
                    case 'o':
                        score.note(at, BassCh, base + 12, ins, volume * 2 / 3);
                        break;
                    case 'F':
                        score.note(at, BassCh, base + 7, ins, volume);
                        break;
                    case '-':
                        score.keyOff(at, BassCh);
                        break;
                    default:
                        break;
                }
            }
        }
    }

    // Close three-voice chords above `low`; ninth chords drop the root for the bass to play.
    static std::vector<int> voicing(const Chord& c, int low)
    {
        std::vector<int> picks = c.tones.size() >= 5 ? std::vector<int>{c.tones[1], c.tones[3], c.tones[4]}
                                                     : std::vector<int>{c.tones[0], c.tones[1], c.tones[2]};
        std::vector<int> notes;
        for (int t : picks)
            notes.push_back(place(c.root + t, low));
        std::sort(notes.begin(), notes.end());
        // A semitone inside a close chord grates: open it by dropping the upper note an octave.
        for (size_t i = 1; i < notes.size(); ++i)
            if (notes[i] - notes[i - 1] == 1) {
                notes[i] -= 12;
                std::sort(notes.begin(), notes.end());
                i = 0;
            }
        return notes;
    }

    // Voices that keep their note are not struck again, so the chords flow.
    void pads(int row, const std::vector<Chord>& prog, int rowsPer, int volume, int low = noteOf("A3"),
              int ins = Synth::Pad, const int* chans = nullptr)
    {
        static const int padChans[] = {Pad1, Pad2, Pad3};
        if (!chans)
            chans = padChans;
        std::vector<int> previous(3, -1);
        for (size_t i = 0; i < prog.size(); ++i) {
            const std::vector<int> v = voicing(prog[i], low);
            for (int k = 0; k < 3; ++k) {
                if (v[k] == previous[k])
                    continue;
                score.note(row + static_cast<int>(i) * rowsPer, chans[k], v[k], ins, volume);
            }
            previous = v;
        }
    }

    // Short chord hits at the given rows of each chord, each released after `length` rows.
    void stabs(int row, const std::vector<Chord>& prog, int rowsPer, std::initializer_list<int> at, int length,
               int volume, int low, int ins, const int* chans)
    {
        for (size_t i = 0; i < prog.size(); ++i) {
            const std::vector<Chord> one(1, prog[i]);
            for (int k : at) {
                const int r = row + static_cast<int>(i) * rowsPer + k;
                pads(r, one, rowsPer, volume, low, ins, chans);
                for (int v = 0; v < 3; ++v)
                    if (score.at(r + length, chans[v]).note == 0)
                        score.keyOff(r + length, chans[v]);
            }
        }
    }

    void release(int row, std::initializer_list<int> chans)
    {
        for (int ch : chans)
            score.keyOff(row, ch);
    }

    // Digits index the chord's notes upwards from `low`; beats are a little louder.
    void arp(int row, const std::vector<Chord>& prog, int rowsPer, const char* pattern, int low, int volume,
             int ch = Arp, int ins = Synth::Bell)
    {
        const int len = static_cast<int>(std::strlen(pattern));
        for (size_t i = 0; i < prog.size(); ++i) {
            std::vector<int> ladder;
            for (int octave = 0; octave < 4; ++octave)
                for (int t : prog[i].tones)
                    ladder.push_back(place(prog[i].root + t, low) + 12 * octave);
            std::sort(ladder.begin(), ladder.end());
            ladder.erase(std::unique(ladder.begin(), ladder.end()), ladder.end());
            for (int r = 0; r < rowsPer && len; ++r) {
                const char c = pattern[r % len];
                if (c < '0' || c > '9')
                    continue;
                const int at = row + static_cast<int>(i) * rowsPer + r;
                score.note(at, ch, ladder[c - '0'], ins, r % 4 == 0 ? volume : volume * 3 / 4);
            }
        }
    }

    // Long notes swell into a vibrato; rests release the note.
    int melody(int row, const std::vector<Ev>& evs, int ch, int ins, int volume, bool vibrato = true)
    {
        int r = row;
        for (const Ev& e : evs) {
            if (e.note) {
                score.note(r, ch, e.note, ins, volume);
                for (int k = 6; vibrato && e.length >= 8 && k < e.length; ++k)
                    score.effect(r + k, ch, kVibrato, k < 10 ? 0x41 : 0x42);
            } else {
                score.keyOff(r, ch);
            }
            r += e.length;
        }
        score.keyOff(r, ch);
        return r;
    }

    // A second voice under the melody: the highest chord note at least a minor
    // third below each melody note, so the two never rub.
    static std::vector<Ev> harmony(const std::vector<Ev>& evs, const std::vector<Chord>& prog, int rowsPer)
    {
        std::vector<Ev> out;
        int t = 0;
        for (const Ev& e : evs) {
            Ev h = e;
            if (e.note) {
                const Chord& c = prog[std::min<size_t>(t / rowsPer, prog.size() - 1)];
                h.note = 0;
                for (int n = e.note - 3; n > e.note - 12 && !h.note; --n)
                    for (size_t k = 0; k < 3 && k < c.tones.size(); ++k)
                        if ((n - 1) % 12 == (c.root + c.tones[k]) % 12)
                            h.note = n;
            }
            out.push_back(h);
            t += e.length;
        }
        return out;
    }

    // Repeats a channel's notes later and quieter on another channel.
    void echo(int from, int to, int row, int rows, int delay, int percent)
    {
        for (int r = row; r < row + rows; ++r) {
            const XmCell cell = score.at(r, from);
            if (cell.note < 1 || cell.note > 96 || !cell.instrument)
                continue;
            const int v = cell.volume >= 0x10 && cell.volume <= 0x50 ? cell.volume - 0x10 : 64;
            score.note(r + delay, to, cell.note, cell.instrument, v * percent / 100);
        }
    }

    // Volume column set row by row from one level to another.
    void ramp(int row, int rows, int ch, int from, int to)
    {
        for (int k = 0; k < rows; ++k)
            score.volume(row + k, ch, from + (to - from) * k / rows);
    }

    // Snare sixteenths growing louder, toms tumbling down in the second half.
    void fill(int row, int rows, int volume)
    {
        static const char* const toms[] = {"A4", "F4", "D4", "B3", "G3", "E3"};
        for (int k = 0; k < rows; ++k) {
            const int v = volume * (rows + k) / (2 * rows);
            if (k < rows / 2 || k % 2)
                score.note(row + k, Snare, kC4, Synth::Snare, v);
            else
                score.note(row + k, Perc, noteOf(toms[(k - rows / 2) / 2 % 6]), Synth::Tom, volume);
        }
    }

    // A little snare pickup on the last beat of a phrase.
    void turnaround(int row, int volume)
    {
        hits(row, 4, Snare, Synth::Snare, ".oxX", volume);
        score.note(row + 2, Perc, noteOf("G4"), Synth::Tom, volume * 2 / 3);
    }

    void crash(int row, int volume) { score.note(row, Cymbal, kC4, Synth::Crash, volume); }

    // Looped noise gliding up or down while its volume follows a ramp.
    void sweep(int row, int rows, int note, bool up, int speed, int from, int to)
    {
        score.note(row, Fx, note, Synth::Noise, from);
        ramp(row + 1, rows - 1, Fx, from, to);
        for (int k = 1; k < rows; ++k)
            score.effect(row + k, Fx, up ? kPortaUp : kPortaDown, static_cast<uint8_t>(speed));
        score.keyOff(row + rows, Fx);
    }
};

// ---- The sections, each written from its first row. ----

// Credits: pads alone, then a sparse bell arpeggio, bass and soft drums build
// under a first, quiet glimpse of the theme.
void intro(Writer& w, int r0)
{
    const int pickup = 28;
    const std::vector<Chord> dm = progression("Dm");
    w.pads(r0, dm, pickup, 4);
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(r0 + 1, pickup - 1, ch, 4, 20);
    w.score.note(r0 + 8, Arp, noteOf("A4"), Synth::Bell, 18);
    w.score.note(r0 + 20, Arp, noteOf("D5"), Synth::Bell, 20);
    w.echo(Arp, Echo, r0, pickup, 3, 45);

    const int r1 = r0 + pickup;
    const std::vector<Chord> loop = progression("Dm Bb F C");
    for (int pass = 0; pass < 4; ++pass)
        w.pads(r1 + pass * 64, loop, kBar, 22);
    w.arp(r1, loop, kBar, "0.......2...4...", noteOf("D4"), 20);
    w.arp(r1 + 64, loop, kBar, "0.2.4.2.5.4.2.4.", noteOf("D4"), 20);
    w.arp(r1 + 128, loop, kBar, "0.2.4.5.6.5.4.2.", noteOf("D4"), 22);
    w.arp(r1 + 192, loop, kBar, "0.2.4.5.6.5.4.2.", noteOf("D4"), 24);
    w.echo(Arp, Echo, r1, 256, 3, 45);

    w.bassLine(r1 + 64, loop, kBar, "R...............", 36, Synth::SubBass);
    w.bassLine(r1 + 128, loop, kBar, "R.......R.....o.", 40, Synth::SubBass);
    w.bassLine(r1 + 192, loop, kBar, "R.......R..R..o.", 44, Synth::SubBass);

    w.hits(r1 + 128, 64, Hat, Synth::ClosedHat, "..o...o...o...o.", 36);
    w.hits(r1 + 128, 64, Kick, Synth::Kick, "X...............", 34);
    w.hits(r1 + 192, 64, Hat, Synth::ClosedHat, "x.o.x.o.x.o.x.oo", 36);
    w.hits(r1 + 192, 56, Kick, Synth::Kick, "X.......X.......", 44);
    w.hits(r1 + 192, 48, Snare, Synth::Snare, "............X...", 30);
    w.fill(r1 + 248, 8, 44);

    // The theme's first phrase, softly, as a promise of what comes.
    const std::vector<Ev> theme = phrase(kTheme);
    w.melody(r1 + 192, std::vector<Ev>(theme.begin(), theme.begin() + 14), LeadCh, Synth::Lead, 24);
    w.sweep(r1 + 224, 32, noteOf("C3"), true, 2, 2, 26);
}

// Islands: the theme enters over full drums; the second time round a harmony
// voice and a running arpeggio join.
void islands(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression(kThemeChords);
    const std::vector<Ev> theme = phrase(kTheme);
    w.crash(r0, 44);
    w.crash(r0 + 128, 36);
    for (int pass = 0; pass < 2; ++pass) {
        const int r = r0 + pass * 128;
        w.pads(r, prog, kBar, 20);
        w.melody(r, theme, LeadCh, Synth::Lead, 40);
        w.bassLine(r, prog, kBar, "R..R..O.R..R..F.", 40);
        w.hits(r, 128, Kick, Synth::Kick, "X.......X.x.....", 52);
        w.hits(r, 128, Snare, Synth::Snare, "....X.......X...", 42);
        w.turnaround(r + 60, 40);
    }
    w.turnaround(r0 + 124, 44);
    w.hits(r0, 128, Hat, Synth::ClosedHat, "x.o.x.o.x.o.x.o.", 40);
    w.hits(r0 + 128, 128, Hat, Synth::ClosedHat, "xooox.oox.ooxoxo", 40);
    w.hits(r0 + 128, 128, Perc, Synth::OpenHat, "..............o.", 40);
    w.melody(r0 + 128, Writer::harmony(theme, prog, kBar), Lead2, Synth::Lead, 24);
    w.arp(r0 + 128, prog, kBar, "0123432101234321", noteOf("D4"), 18);
    w.echo(Arp, Echo, r0 + 128, 128, 3, 40);
    // Two beats of fill on the last chord lead into the logo.
    w.bassLine(r0 + 256, progression("A"), 8, "R.R.R.R.", 40);
    w.fill(r0 + 256, 8, 48);
}

// Logo: a brass fanfare, Bb and C rising to D, then a breath.
void logo(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression("Bb C Dm");
    static const int stabChans[] = {Stab1, Stab2, Lead2};
    w.crash(r0, 50);
    w.crash(r0 + 32, 50);
    for (size_t i = 0; i < prog.size(); ++i) {
        const int r = r0 + static_cast<int>(i) * kBar;
        const std::vector<Chord> one(1, prog[i]);
        const bool last = i + 1 == prog.size();
        if (last)
            w.stabs(r, one, kBar, {0}, 12, 44, noteOf("F4"), Synth::Brass, stabChans);
        else
            w.stabs(r, one, kBar, {0, 3, 6, 8}, 2, 40, noteOf("F4"), Synth::Brass, stabChans);
        w.hits(r, kBar, Kick, Synth::Kick, last ? "X..............." : "X..X..X.X.......", 56);
        w.bassLine(r, one, kBar, last ? "R..............." : "R..R..R.R.......", 46);
    }
    w.pads(r0, prog, kBar, 20);
    w.melody(r0, phrase("F5:3 F5:3 F5:2 Bb5:8 G5:3 G5:3 G5:2 C6:8 D6:16"), LeadCh, Synth::Lead, 44);
    w.fill(r0 + 40, 8, 46);
    // The break: the pad dies away under the first notes of the theme, bubbling.
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(r0 + 48, 12, ch, 20, 8);
    w.melody(r0 + 48, phrase("D5:3 E5:3 F5:3 A5:3"), Arp, Synth::Bell, 22, false);
    w.echo(Arp, Echo, r0 + 48, 12, 2, 50);
}

// Sea bed: a soft, filtered groove on i9 and iv9, bubbles of bell notes, and
// the theme's outline sung slowly by a pad voice.
void seaBed(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression("Dm9 Dm9 Gm9 Gm9 Dm9 Dm9 Gm9 Gm9 Dm9 Dm9 Gm9 Gm9 Dm9 Dm9 Gm9 Gm9");
    w.pads(r0, prog, kBar, 16);
    w.bassLine(r0, prog, kBar, "R.....r...R.r...", 46, Synth::SubBass);
    w.hits(r0, 256, Kick, Synth::Kick, "X.........X.....", 40);
    w.hits(r0 + 64, 192, Perc, Synth::Clap, "........X.......", 24);
    w.hits(r0, 256, Hat, Synth::ClosedHat, "..o...o...o.o.o.", 30);

    Dice dice(0x5EABEDu);
    const int low = noteOf("D5");
    for (int b = 0; b < 16; ++b) {
        const std::vector<int> v = Writer::voicing(prog[b], low);
        for (int k = 0; k < kBar; ++k) {
            if (dice.roll(3) == 0)
                continue;
            const int note = v[dice.roll(3)] + 12 * dice.roll(2);
            w.score.note(r0 + b * kBar + k, Arp, note, Synth::Bell, 8 + dice.roll(10));
        }
    }
    w.echo(Arp, Echo, r0, 264, 3, 55);

    w.melody(r0 + 128, phrase("A4:12 D5:4 E5:8 F5:8 G5:12 F5:4 D5:16 A4:12 D5:4 E5:8 F5:4 A5:4 Bb5:12 A5:4 G5:16"),
             LeadCh, Synth::Pad, 30);
    // Bubbles rise and the snare wakes for the tunnel.
    w.arp(r0 + 256, progression("A"), 8, "01234567", noteOf("A4"), 20);
    w.fill(r0 + 256, 8, 36);
}

// Underwater tunnel: four on the floor, sixteenth hats, a pumping bass and a
// long line climbing towards the exit.
void tunnel(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression("Dm Dm Bb C Dm Dm Bb C Gm Gm Bb C Bb C A A");
    w.crash(r0, 44);
    w.pads(r0, prog, kBar, 18);
    w.hits(r0, 256, Kick, Synth::Kick, "X...X...X...X...", 52);
    w.hits(r0, 192, Snare, Synth::Snare, "....X.......X...", 42);
    w.hits(r0, 256, Hat, Synth::ClosedHat, "xoxoxoxoxoxoxoxx", 40);
    w.hits(r0 + 64, 192, Perc, Synth::OpenHat, "..x...x...x...x.", 30);
    w.bassLine(r0, std::vector<Chord>(prog.begin(), prog.begin() + 12), kBar, "R.R.O.R.R.R.O.R.", 40);
    w.bassLine(r0 + 192, std::vector<Chord>(prog.begin() + 12, prog.end()), kBar, "RRORRRORRRORRROR", 38);
    w.arp(r0, std::vector<Chord>(prog.begin(), prog.begin() + 8), kBar, "0123123423453456", noteOf("D4"), 16);
    w.arp(r0 + 128, std::vector<Chord>(prog.begin() + 8, prog.end()), kBar, "0123123423453456", noteOf("D4"), 22);
    w.echo(Arp, Echo, r0, 256, 3, 35);
    w.melody(r0 + 64, phrase("A5:32 Bb5:16 C6:16 Bb5:32 D6:16 E6:16 F6:16 G6:16 E6:32"), LeadCh, Synth::Lead, 36);
    // Rising tension: the snare doubles, then doubles again.
    w.hits(r0 + 192, 32, Snare, Synth::Snare, "X.x.X.x.X.x.X.x.", 40);
    for (int k = 0; k < 32; ++k)
        w.score.note(r0 + 224 + k, Snare, kC4, Synth::Snare, 22 + k * 24 / 32);
    w.bassLine(r0 + 256, progression("A"), 12, "R.R.R.R.R.R.", 40);
    w.pads(r0 + 256, progression("A"), 12, 22);
    w.fill(r0 + 256, 12, 50);
}

// Tunnel exit: a noise riser and a snare roll climb for three bars into the hit.
void tunnelExit(Writer& w, int r0)
{
    w.sweep(r0, 48, noteOf("C3"), true, 2, 6, 44);
    for (int k = 0; k < 48; ++k) {
        const bool play = k < 16 ? k % 2 == 0 : true;
        if (!play)
            continue;
        w.score.note(r0 + k, Snare, kC4, Synth::Snare, 16 + k * 34 / 48);
        if (k >= 32)
            w.score.effect(r0 + k, Snare, kRetrigger, 0x93);
    }
    w.pads(r0, progression("A"), 48, 14);
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(r0 + 1, 47, ch, 14, 30);
    w.bassLine(r0, progression("A A A"), kBar, "R.R.R.R.R.R.R.R.", 34);

    // The hit: everything at once on D minor, then ringing out.
    const int hit = r0 + 48;
    static const int stabChans[] = {Stab1, Stab2, Lead2};
    w.crash(hit, 64);
    w.score.note(hit, Kick, kC4, Synth::Kick, 64);
    w.score.note(hit, Perc, noteOf("D3"), Synth::Tom, 56);
    w.pads(hit, progression("Dm"), kBar, 48, noteOf("F4"), Synth::Brass, stabChans);
    w.pads(hit, progression("Dm"), kBar, 26);
    w.bassLine(hit, progression("Dm"), kBar, "R...............", 50);
    w.score.note(hit, LeadCh, noteOf("D6"), Synth::Lead, 36);
    w.release(hit + 12, {Stab1, Stab2, Lead2, LeadCh});
}

// Flipper land: the relative major, off-beat stabs and a hopping bass and tune.
void flipperLand(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression("F C Dm Bb F C Dm Bb C");
    static const int stabChans[] = {Stab1, Stab2, Lead2};
    w.pads(r0, prog, kBar, 14);
    w.hits(r0, 128, Kick, Synth::Kick, "X.....X...X..X..", 50);
    w.hits(r0, 128, Snare, Synth::Clap, "....X.......X...", 40);
    w.hits(r0, 128, Hat, Synth::ClosedHat, "x.x.x.x.x.x.x.xx", 34);
    w.hits(r0, 128, Perc, Synth::OpenHat, "..X...X...X...X.", 26);
    w.bassLine(r0, std::vector<Chord>(prog.begin(), prog.begin() + 8), kBar, "R..O..R.R..O.RO.", 42);
    w.stabs(r0, std::vector<Chord>(prog.begin(), prog.begin() + 8), kBar, {2, 5, 10, 13}, 2, 30, noteOf("A4"),
            Synth::Pluck, stabChans);
    const char* bars =
        "A5:2 r:1 A5:1 C6:2 A5:2 F5:3 G5:3 A5:2 "
        "G5:2 r:1 G5:1 E5:2 C5:2 E5:3 G5:3 C6:2 "
        "F5:2 r:1 F5:1 A5:2 D6:2 C6:3 A5:3 F5:2 "
        "D5:3 F5:3 Bb5:2 A5:3 G5:3 F5:2 "
        "A5:2 r:1 A5:1 C6:2 A5:2 F5:3 G5:3 A5:2 "
        "G5:2 r:1 G5:1 E5:2 C5:2 E5:3 G5:3 C6:2 "
        "F5:2 r:1 F5:1 A5:2 D6:2 C6:3 A5:3 F5:2 "
        "Bb5:4 A5:2 G5:2 F5:4 r:4 "
        "G5:2 A5:2 Bb5:2 C6:2";
    w.melody(r0, phrase(bars), LeadCh, Synth::Lead, 38, false);
    // The last bar: a tom run instead of a groove.
    w.bassLine(r0 + 128, progression("C"), kBar, "R.R.R.R.R.......", 42);
    w.fill(r0 + 136, 8, 52);
    w.hits(r0 + 128, 8, Kick, Synth::Kick, "X...X...", 52);
}

// Spacecraft: the theme in full, doubled an octave down, then harmonised over
// big pads and brass, crashes every four bars.
void spaceCraft(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression(kThemeChords);
    const std::vector<Ev> theme = phrase(kTheme);
    static const int brassChans[] = {Stab1, Stab2, Perc};
    for (int pass = 0; pass < 2; ++pass) {
        const int r = r0 + pass * 128;
        w.crash(r, 52);
        w.crash(r + 64, 44);
        w.pads(r, prog, kBar, 26);
        w.melody(r, theme, LeadCh, Synth::Lead, 44);
        w.hits(r, 128, Kick, Synth::Kick, "X.......X.X.....", 54);
        w.hits(r, 128, Snare, Synth::Snare, "....X.......X...", 44);
        w.bassLine(r, prog, kBar, "R..R..O.R.R..RO.", 42);
        w.turnaround(r + 60, 42);
    }
    w.turnaround(r0 + 124, 46);
    w.pads(r0 + 128, prog, kBar, 16, noteOf("F4"), Synth::Brass, brassChans);
    w.hits(r0, 128, Hat, Synth::ClosedHat, "x.o.x.o.x.o.x.oo", 40);
    w.hits(r0 + 128, 128, Hat, Synth::ClosedHat, "xoxoxoxoxoxoxoxo", 40);
    w.melody(r0, shifted(theme, -12), Lead2, Synth::Lead, 26);
    w.melody(r0 + 128, Writer::harmony(theme, prog, kBar), Lead2, Synth::Lead, 28);
    w.arp(r0 + 128, prog, kBar, "0123432101234321", noteOf("D4"), 16);
    w.echo(Arp, Echo, r0 + 128, 128, 3, 40);
    w.release(r0 + 256, {Stab1, Stab2});
    w.bassLine(r0 + 256, progression("A"), 8, "R.R.R.R.", 40);
    w.fill(r0 + 256, 8, 46);
}

// Cockpit: half time and open space; the bell blinks like the displays.
void cockpit(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression("Bb Bb F F C C");
    w.crash(r0, 40);
    w.pads(r0, prog, kBar, 24);
    w.hits(r0, 96, Kick, Synth::Kick, "X.........X.....", 50);
    w.hits(r0, 96, Snare, Synth::Snare, "........X.......", 42);
    w.hits(r0, 96, Hat, Synth::ClosedHat, "x...x...x...x...", 32);
    w.bassLine(r0, prog, kBar, "R.......-.....r.", 44, Synth::SubBass);
    w.arp(r0, prog, kBar, "0.2.4.3.5.4.2.1.", noteOf("D5"), 20);
    w.echo(Arp, Echo, r0, 96, 6, 55);
    w.melody(r0, phrase("D5:24 F5:8 C5:24 A4:8 E5:32"), LeadCh, Synth::Lead, 30);
    // Half a bar on B major turns the key up a tone for the city.
    w.pads(r0 + 96, progression("B"), 8, 26);
    w.bassLine(r0 + 96, progression("B"), 8, "R.R.R.R.", 44, Synth::Bass);
    w.fill(r0 + 96, 8, 50);
}

// City: the climax, a tone higher in E minor; everything plays.
void city(Writer& w, int r0)
{
    const std::vector<Chord> prog = transposed(progression(kThemeChords), 2);
    const std::vector<Ev> theme = shifted(phrase(kTheme), 2);
    static const int stabChans[] = {Stab1, Stab2, Perc};
    for (int pass = 0; pass < 2; ++pass) {
        const int r = r0 + pass * 128;
        w.crash(r, 56);
        w.crash(r + 64, 48);
        w.pads(r, prog, kBar, 22);
        w.melody(r, theme, LeadCh, Synth::Lead, 46);
        w.melody(r, Writer::harmony(theme, prog, kBar), Lead2, Synth::Lead, 30);
        w.bassLine(r, prog, kBar, "R.R.O.R.R.R.O.RO", 44);
        w.stabs(r, prog, kBar, {2, 6, 10, 14}, 2, pass ? 30 : 22, noteOf("G4"), Synth::Brass, stabChans);
    }
    w.release(r0 + 256, {Stab1, Stab2, Perc});
    for (int r = r0 + 60; r < r0 + 256; r += 64)
        w.turnaround(r, 44);
    w.hits(r0, 256, Kick, Synth::Kick, "X...X...X...X...", 56);
    w.hits(r0, 256, Snare, Synth::Snare, "....X.......X...", 44);
    w.hits(r0, 256, Hat, Synth::ClosedHat, "xoxoXoxoxoxoXoxo", 42);
    w.arp(r0, prog, kBar, "0123452301234523", noteOf("E4"), 16);
    w.arp(r0 + 128, prog, kBar, "0123452301234523", noteOf("E4"), 20);
    w.echo(Arp, Echo, r0, 256, 3, 40);
    w.bassLine(r0 + 256, transposed(progression("A"), 2), 8, "R.R.R.R.", 44);
    w.fill(r0 + 256, 8, 54);
}

// Blow-up: two bars of fill, then the crash and a falling roar of noise.
void blowUp(Writer& w, int r0)
{
    w.pads(r0, progression("Dm Dm A A"), kBar / 2, 24);
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(r0 + 17, 15, ch, 24, 34);
    w.bassLine(r0, progression("Dm A"), kBar, "RRRRRRRRRRRRRRRR", 40);
    w.hits(r0, 32, Kick, Synth::Kick, "X...X...X...X...", 54);
    w.fill(r0, 16, 44);
    w.fill(r0 + 16, 16, 56);
    w.sweep(r0 + 16, 16, noteOf("C3"), true, 6, 8, 40);

    const int boom = r0 + 32;
    w.crash(boom, 64);
    w.score.note(boom, Kick, kC4, Synth::Kick, 64);
    w.score.note(boom, Perc, noteOf("A2"), Synth::Tom, 64);
    w.score.note(boom, Snare, kC4, Synth::Snare, 50);
    w.sweep(boom, 64, noteOf("C5"), false, 1, 52, 6);
    w.pads(boom, progression("Dm"), 64, 34, noteOf("D3"));
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(boom + 1, 63, ch, 34, 14);
    w.score.note(boom, BassCh, noteOf("D2"), Synth::SubBass, 54);
    w.ramp(boom + 1, 63, BassCh, 54, 10);
    w.release(boom + 64, {BassCh});
}

// Outro: the theme a last time, softly on a pad voice with a bell above it,
// then the arpeggio of the opening and a long final D minor that fades away.
void outro(Writer& w, int r0)
{
    const std::vector<Chord> prog = progression(kThemeChords);
    const std::vector<Ev> theme = phrase(kTheme);
    w.pads(r0, prog, kBar, 18);
    w.bassLine(r0, prog, kBar, "R...............", 34, Synth::SubBass);
    w.melody(r0, theme, LeadCh, Synth::Pad, 32, false);
    w.melody(r0, shifted(theme, 12), Arp, Synth::Bell, 12, false);
    w.echo(Arp, Echo, r0, 128, 3, 60);
    w.hits(r0, 128, Hat, Synth::ClosedHat, "..o...o...o...o.", 24);

    const int r1 = r0 + 128;
    const std::vector<Chord> close = progression("Bb F C A");
    w.pads(r1, close, kBar, 18);
    w.bassLine(r1, close, kBar, "R...............", 32, Synth::SubBass);
    w.arp(r1, close, kBar, "0.2.4.5.4.2.4.2.", noteOf("D4"), 18);
    w.arp(r1 + 48, progression("A"), kBar, "0.......2...4...", noteOf("D4"), 16);
    w.echo(Arp, Echo, r1, 64, 3, 45);

    const int last = r1 + 64;
    const int rows = 48;
    w.pads(last, progression("Dm"), rows, 18);
    w.score.note(last, BassCh, noteOf("D2"), Synth::SubBass, 32);
    w.melody(last, phrase("D5:4 E5:4 F5:4 A5:20"), Arp, Synth::Bell, 16, false);
    w.echo(Arp, Echo, last, rows, 3, 45);
    for (int ch : {Pad1, Pad2, Pad3})
        w.ramp(last + 1, rows - 1, ch, 18, 5);
    w.ramp(last + 1, rows - 1, BassCh, 32, 4);
    w.release(last + rows, {Pad1, Pad2, Pad3, BassCh, LeadCh});
}

// Channel faders in percent, applied to every volume the arrangement wrote:
// the balance of the whole mix lives here rather than in each section.
void mixdown(Score& score)
{
    static const int faders[] = {115, 115, 110, 110, 100, 70, 100, 100, 100, 125, 120, 125, 125, 100, 110, 110};
    for (int r = 0; r < score.rows(); ++r)
        for (int ch = 0; ch < score.channels(); ++ch) {
            const uint8_t v = score.at(r, ch).volume;
            if (v >= 0x10 && v <= 0x50)
                score.volume(r, ch, (v - 0x10) * faders[ch] / 100);
        }
}

}  // namespace

std::vector<int> Song::sectionRows()
{
    // The schedule's cuts in seconds, times eight rows a second.
    return {0, 284, 548, 608, 872, 1140, 1204, 1348, 1612, 1716, 1980, 2076, 2316};
}

XmModule Song::compose()
{
    const std::vector<int> starts = sectionRows();
    Score score(starts.back() + kTailRows, kChannels);
    static const int pans[] = {128, 120, 164, 92, 100, 128, 60, 128, 196, 128, 84, 72, 184, 128, 96, 160};
    for (int ch = 0; ch < kChannels; ++ch)
        score.setPanning(ch, pans[ch]);
    for (int row : starts)
        score.markSection(row);

    Writer w(score);
    void (*const sections[])(Writer&, int) = {intro,       islands,    logo,    seaBed, tunnel, tunnelExit,
                                              flipperLand, spaceCraft, cockpit, city,   blowUp, outro};
    for (size_t i = 0; i < sizeof(sections) / sizeof(sections[0]); ++i)
        sections[i](w, starts[i]);
    mixdown(score);

    XmModule module;
    module.name = "Velmora";
    module.speed = kSpeed;
    module.bpm = kBpm;
    score.toModule(module, 64);
    module.instruments = Synth::bank();
    return module;
}
