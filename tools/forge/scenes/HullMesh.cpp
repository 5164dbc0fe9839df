// The hull is lofted from octagonal stations, then its flat faces are covered with boxes of many sizes (the
// detail that gives a ship its scale), rows of lit windows, bays cut into the flanks and the upper works.
#include "HullMesh.h"

#include "Maths.h"

#include "effects/SpaceCraftLayout.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace SpaceCraftLayout;

const uint64_t SEED = 0x5ace0c4a1ull;

// Body stations from the nose to the stern: z, half width, half height.
struct Station {
    double z;
    double w;
    double h;
};
const Station STATIONS[] = {
    {NOSE_Z, 5.0, 3.0},  {-205.0, 20.0, 9.0}, {-140.0, 42.0, 19.0},  {148.0, 42.0, 19.0},
    {150.0, 52.0, 26.0}, {226.0, 52.0, 26.0}, {STERN_Z, 47.0, 23.0},
};
const int STATION_COUNT = sizeof(STATIONS) / sizeof(STATIONS[0]);
// The mid body, from station 2 to 3, is built face by face with its trench and bays.
const int MID = 2;
const double CHAMFER = 0.35;
const int SIDES = 8;
// Faces of the octagon by index: 0 starboard, 2 top, 4 port, 6 bottom, odd ones the chamfers.
const int STARBOARD = 0;
const int TOP = 2;
const int PORT = 4;

const double TRENCH_HALF = 5.0;
const double TRENCH_DEPTH = 5.0;
const double TRENCH_START = -132.0;
const double TRENCH_END = 144.0;

const double BAY_DEPTH = 10.0;
const double BAYS[][2] = {{-58.0, -32.0}, {34.0, 60.0}};
const double BAY_LOW = -7.0;
const double BAY_HIGH = 6.5;

const double POD_X = 56.0;
const double POD_Y = -7.0;
const double POD_RADIUS = 7.0;
const double POD_FRONT = -104.0;
const double POD_BACK = 130.0;

const double WINDOW_OFFSET = 0.12;
// How coarse the detail is everywhere at once: it sets the hull's face count.
const double DETAIL = 1.2;
const int WINDOW_BANDS = 8;

// The section between the two stations around z; all zero beyond the ends.
Station sectionAt(double z)
{
    for (int i = 0; i + 1 < STATION_COUNT; ++i) {
        const Station& a = STATIONS[i];
        const Station& b = STATIONS[i + 1];
        if (z >= a.z && z <= b.z) {
            const double t = (z - a.z) / (b.z - a.z);
            return Station{z, Maths::mix(a.w, b.w, t), Maths::mix(a.h, b.h, t)};
        }
    }
    return Station{z, 0.0, 0.0};
}

Vec3 octagon(const Station& s, int k)
{
    const double a = 1.0 - CHAMFER;
    const double xs[SIDES] = {s.w, s.w, s.w * a, -s.w * a, -s.w, -s.w, -s.w * a, s.w * a};
    const double ys[SIDES] = {-s.h * a, s.h * a, s.h, s.h, s.h * a, -s.h * a, -s.h, -s.h};
    return Vec3{xs[k % SIDES], ys[k % SIDES], s.z};
}

Vec3 unit(double x, double y, double z)
{
    return Vec3{x, y, z}.normalised();
}

}  // namespace

HullMesh::HullMesh(MeshBuilder& builder) : mesh(builder), plates(builder, PLATE_SCALE, SEED + 1), random(SEED) {}

double HullMesh::halfWidth(double z)
{
    return sectionAt(z).w;
}

double HullMesh::halfHeight(double z)
{
    return sectionAt(z).h;
}

void HullMesh::greebles(const Frame& f, double u0, double u1, double v0, double v1, double scale)
{
    const double du = u1 - u0;
    const double dv = v1 - v0;
    if (du <= 0.0 || dv <= 0.0)
        return;
    // Split the longer side somewhere near its middle until the piece is about `scale` across,
    // times DETAIL.
    const double limit = scale * DETAIL * random.range(0.7, 1.5);
    if (std::max(du, dv) > limit) {
        const double cut = random.range(0.3, 0.7);
        if (du >= dv) {
            greebles(f, u0, u0 + du * cut, v0, v1, scale);
            greebles(f, u0 + du * cut, u1, v0, v1, scale);
        } else {
            greebles(f, u0, u1, v0, v0 + dv * cut, scale);
            greebles(f, u0, u1, v0 + dv * cut, v1, scale);
        }
        return;
    }
    const double margin = std::min(du, dv) * 0.08 + 0.1;
    const double a0 = u0 + margin, a1 = u1 - margin, b0 = v0 + margin, b1 = v1 - margin;
    if (a1 - a0 < 0.3 || b1 - b0 < 0.3)
        return;
    const double size = std::min(a1 - a0, b1 - b0);
    const double pick = random.uniform();
    const int material = random.uniform() < 0.06 ? HULL_ACCENT : HULL_PLATES;
    if (pick < 0.22)
        return;  // bare plating
    if (pick < 0.62) {
        // A low panel.
        box(f, a0, a1, b0, b1, 0.0, size * random.range(0.05, 0.18), material);
        return;
    }
    if (pick < 0.82) {
        // A block with a smaller one on top.
        const double h = size * random.range(0.15, 0.45);
        box(f, a0, a1, b0, b1, 0.0, h, material);
        const double in = size * 0.25;
        box(f, a0 + in, a1 - in, b0 + in, b1 - in, h, h + size * random.range(0.1, 0.3), HULL_PLATES);
        return;
    }
    if (pick < 0.93) {
        // Ribs: a row of fins across the piece.
        const int ribs = 2 + random.below(3);
        const double step = (a1 - a0) / ribs;
        for (int i = 0; i < ribs; ++i)
            box(f, a0 + step * i + step * 0.3, a0 + step * (i + 1) - step * 0.3, b0, b1, 0.0, size * 0.3, HULL_DARK);
        return;
    }
    // A tall block: a housing standing proud of the rest.
    box(f, a0, a1, b0, b1, 0.0, size * random.range(0.5, 0.9), material);
}

void HullMesh::windows(const Frame& f, double u0, double u1, double v, double height)
{
    const Vec3 p[4] = {f.at(u0, v - height * 0.5, WINDOW_OFFSET), f.at(u1, v - height * 0.5, WINDOW_OFFSET),
                       f.at(u1, v + height * 0.5, WINDOW_OFFSET), f.at(u0, v + height * 0.5, WINDOW_OFFSET)};
    // The picture holds bands of windows; each strip takes one, a window every two units.
    const int band = random.below(WINDOW_BANDS);
    const double t0 = static_cast<double>(band) / WINDOW_BANDS;
    const double t1 = t0 + 1.0 / WINDOW_BANDS;
    const double s0 = random.uniform() * 8.0;
    const double s1 = s0 + (u1 - u0) / 16.0;
    const double st[4][2] = {{s0, t1}, {s1, t1}, {s1, t0}, {s0, t0}};
    face(p, f.n, st, HULL_WINDOWS);
}

void HullMesh::body()
{
    for (int i = 0; i + 1 < STATION_COUNT; ++i) {
        for (int k = 0; k < SIDES; ++k) {
            if (i == MID && (k == TOP || k == STARBOARD || k == PORT))
                continue;
            const Vec3 p[4] = {octagon(STATIONS[i], k), octagon(STATIONS[i], k + 1), octagon(STATIONS[i + 1], k + 1),
                               octagon(STATIONS[i + 1], k)};
            const Vec3 mid = (p[0] + p[1] + p[2] + p[3]) * 0.25;
            Vec3 across = p[1] - p[0];
            across = across.normalised();
            double st[4][2];
            for (int c = 0; c < 4; ++c) {
                st[c][0] = p[c].z * PLATE_SCALE;
                st[c][1] = p[c].dot(across) * PLATE_SCALE;
            }
            face(p, Vec3{mid.x, mid.y, 0.0}, st, i == STATION_COUNT - 2 ? HULL_DARK : HULL_PLATES);
            if (i != MID || k % 2 == 0)
                continue;
            // The mid body's chamfers: detail along their length and a row of windows.
            const Vec3 v = across;
            const Vec3 n = v.cross(Vec3{0.0, 0.0, 1.0}).dot(mid) > 0.0 ? v.cross(Vec3{0.0, 0.0, 1.0})
                                                                       : Vec3{0.0, 0.0, 1.0}.cross(v);
            const Frame f{p[0], Vec3{0.0, 0.0, 1.0}, v, n.normalised()};
            const double width = (p[1] - p[0]).length();
            greebles(f, p[0].z - f.origin.z, p[3].z - f.origin.z, 0.0, width * 0.55, 9.0);
            greebles(f, p[0].z - f.origin.z, p[3].z - f.origin.z, width * 0.75, width, 6.0);
            windows(f, -130.0 - f.origin.z, 140.0 - f.origin.z, width * 0.65, 1.0);
        }
    }
    // Caps: the nose's blunt tip and the stern plate the engines stand on.
    for (int end : {0, STATION_COUNT - 1}) {
        std::vector<Vec3> ring;
        for (int k = 0; k < SIDES; ++k)
            ring.push_back(octagon(STATIONS[end], k));
        mesh.fanFacing(ring, Vec3{0.0, 0.0, end == 0 ? -1.0 : 1.0}, end == 0 ? HULL_PLATES : HULL_DARK);
    }
    // The engine block: heavy detail all round.
    const Station& a = STATIONS[MID + 2];
    const Station& b = STATIONS[MID + 3];
    for (int k = 0; k < SIDES; ++k) {
        const Vec3 p0 = octagon(a, k);
        const Vec3 p1 = octagon(a, k + 1);
        const Vec3 v = (p1 - p0).normalised();
        const Vec3 out = Vec3{(p0.x + p1.x) * 0.5, (p0.y + p1.y) * 0.5, 0.0};
        const Vec3 n =
            v.cross(Vec3{0.0, 0.0, 1.0}).dot(out) > 0.0 ? v.cross(Vec3{0.0, 0.0, 1.0}) : Vec3{0.0, 0.0, 1.0}.cross(v);
        const Frame f{p0, Vec3{0.0, 0.0, 1.0}, v, n.normalised()};
        greebles(f, 2.0, b.z - a.z - 2.0, 0.5, (p1 - p0).length() - 0.5, k % 2 ? 7.0 : 11.0);
    }
}

void HullMesh::trench()
{
    const Station& s = STATIONS[MID];
    const double z0 = s.z;
    const double z1 = STATIONS[MID + 1].z;
    const double edge = s.w * (1.0 - CHAMFER);
    const double floor = s.h - TRENCH_DEPTH;
    const Frame top{Vec3{0.0, s.h, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}};
    plate(top, z0, z1, -edge, -TRENCH_HALF, 0.0, HULL_PLATES);
    plate(top, z0, z1, TRENCH_HALF, edge, 0.0, HULL_PLATES);
    plate(top, z0, TRENCH_START, -TRENCH_HALF, TRENCH_HALF, 0.0, HULL_PLATES);
    plate(top, TRENCH_END, z1, -TRENCH_HALF, TRENCH_HALF, 0.0, HULL_PLATES);

    // Detail on the deck, leaving the tower's footprint clear.
    for (double side : {-1.0, 1.0}) {
        const double inner = TRENCH_HALF + 0.5;
        const double outer = edge - 0.3;
        greebles(top, z0 + 2.0, 90.0, side < 0 ? -outer : inner, side < 0 ? -inner : outer, 10.0);
        greebles(top, 90.0, z1 - 1.0, side < 0 ? -outer : 17.0, side < 0 ? -17.0 : outer, 7.0);
    }

    // The trench: dark floor and walls facing in, pipes along it, ribs across, windows in its walls.
    const Frame bottom{Vec3{0.0, floor, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}};
    plate(bottom, TRENCH_START, TRENCH_END, -TRENCH_HALF, TRENCH_HALF, 0.0, HULL_DARK);
    for (double side : {-1.0, 1.0}) {
        const Frame wall{Vec3{side * TRENCH_HALF, floor, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0},
                         Vec3{-side, 0.0, 0.0}};
        plate(wall, TRENCH_START, TRENCH_END, 0.0, TRENCH_DEPTH, 0.0, HULL_DARK);
        windows(wall, TRENCH_START + 4.0, TRENCH_END - 4.0, TRENCH_DEPTH * 0.62, 0.9);
        greebles(wall, TRENCH_START + 1.0, TRENCH_END - 1.0, 0.2, TRENCH_DEPTH * 0.35, 4.5);
    }
    for (double end : {TRENCH_START, TRENCH_END}) {
        const Frame wall{Vec3{0.0, floor, end}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0},
                         Vec3{0.0, 0.0, end < 0.0 ? 1.0 : -1.0}};
        plate(wall, -TRENCH_HALF, TRENCH_HALF, 0.0, TRENCH_DEPTH, 0.0, HULL_DARK);
    }
    for (double x : {-3.2, 0.0, 3.2})
        box(bottom, TRENCH_START, TRENCH_END, x - 0.6, x + 0.6, 0.0, 0.9, HULL_PLATES);
    for (double z = TRENCH_START + 10.0; z < TRENCH_END - 4.0; z += 14.0)
        box(bottom, z, z + 1.6, -TRENCH_HALF, TRENCH_HALF, 0.0, 2.2, HULL_PLATES);
}

void HullMesh::sides()
{
    const Station& s = STATIONS[MID];
    const double z0 = s.z;
    const double z1 = STATIONS[MID + 1].z;
    const double y = s.h * (1.0 - CHAMFER);
    for (double side : {-1.0, 1.0}) {
        const Frame wall{Vec3{side * s.w, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}, Vec3{side, 0.0, 0.0}};
        // The wall in pieces around the two bays.
        double from = z0;
        for (const auto& bayZ : BAYS) {
            plate(wall, from, bayZ[0], -y, y, 0.0, HULL_PLATES);
            plate(wall, bayZ[0], bayZ[1], BAY_HIGH, y, 0.0, HULL_PLATES);
            plate(wall, bayZ[0], bayZ[1], -y, BAY_LOW, 0.0, HULL_PLATES);
            bay(side, bayZ[0], bayZ[1], BAY_LOW, BAY_HIGH);
            from = bayZ[1];
        }
        plate(wall, from, z1, -y, y, 0.0, HULL_PLATES);

        // Decks: window rows with detail between them, broken where the bays open.
        const double rows[] = {9.2, 3.1, -3.1, -9.2};
        double start = z0 + 3.0;
        for (const auto& bayZ : BAYS) {
            for (double row : rows)
                if (row > BAY_HIGH || row < BAY_LOW)
                    windows(wall, bayZ[0] - 1.0, bayZ[1] + 1.0, row, 1.1);
            for (double row : rows)
                windows(wall, start, bayZ[0] - 2.0, row, 1.1);
            start = bayZ[1] + 2.0;
        }
        for (double row : rows)
            windows(wall, start, z1 - 3.0, row, 1.1);
        const double bands[][2] = {{9.9, 11.9}, {3.8, 8.5}, {-2.4, 2.4}, {-8.5, -3.8}, {-11.9, -9.9}};
        double a = z0 + 1.0;
        for (const auto& bayZ : BAYS) {
            for (const auto& band : bands)
                greebles(wall, a, bayZ[0] - 1.0, band[0], band[1], 6.5);
            for (const auto& band : bands)
                if (band[0] > BAY_HIGH || band[1] < BAY_LOW)
                    greebles(wall, bayZ[0] - 1.0, bayZ[1] + 1.0, band[0], band[1], 6.5);
            a = bayZ[1] + 1.0;
        }
        for (const auto& band : bands)
            greebles(wall, a, z1 - 1.0, band[0], band[1], 6.5);
    }
}

void HullMesh::bay(double side, double z0, double z1, double y0, double y1)
{
    // A hangar cut into the flank: dark walls facing in, a lit ceiling and a frame round the mouth.
    const double x0 = side * STATIONS[MID].w;
    const double x1 = x0 - side * BAY_DEPTH;
    const Frame back{Vec3{x1, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}, Vec3{side, 0.0, 0.0}};
    plate(back, z0, z1, y0, y1, 0.0, HULL_DARK);
    const Frame floor{Vec3{0.0, y0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}};
    plate(floor, z0, z1, std::min(x0, x1), std::max(x0, x1), 0.0, HULL_DARK);
    const Frame ceiling{Vec3{0.0, y1, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, -1.0, 0.0}};
    plate(ceiling, z0, z1, std::min(x0, x1), std::max(x0, x1), 0.0, HULL_DARK);
    for (double x = 2.0; x < BAY_DEPTH; x += 3.0)
        windows(ceiling, z0 + 1.5, z1 - 1.5, x0 - side * x, 0.7);
    for (double end : {z0, z1}) {
        const Frame wall{Vec3{0.0, 0.0, end}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0},
                         Vec3{0.0, 0.0, end == z0 ? 1.0 : -1.0}};
        plate(wall, std::min(x0, x1), std::max(x0, x1), y0, y1, 0.0, HULL_DARK);
    }
    // Cargo and cranes on the floor, and the glow of the hangar's far wall.
    greebles(floor, z0 + 1.0, z1 - 1.0, std::min(x0, x1) + 1.0, std::max(x0, x1) - 3.0, 5.0);
    windows(back, z0 + 2.0, z1 - 2.0, (y0 + y1) * 0.5, (y1 - y0) * 0.5);
    const Frame mouth{Vec3{x0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}, Vec3{side, 0.0, 0.0}};
    box(mouth, z0 - 1.5, z1 + 1.5, y1, y1 + 1.2, 0.0, 1.5, HULL_ACCENT);
    box(mouth, z0 - 1.5, z1 + 1.5, y0 - 1.2, y0, 0.0, 1.5, HULL_ACCENT);
    box(mouth, z0 - 1.5, z0, y0, y1, 0.0, 1.5, HULL_PLATES);
    box(mouth, z1, z1 + 1.5, y0, y1, 0.0, 1.5, HULL_PLATES);
}

void HullMesh::tower()
{
    const double deck = STATIONS[MID].h;
    const Frame up{Vec3{0.0, 0.0, 0.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}};
    // Levels: x half width, z range, y range; the wide one is the bridge.
    struct Level {
        double half, z0, z1, y0, y1;
    };
    const Level levels[] = {{16.0, 92.0, 140.0, deck, 32.0},
                            {12.0, 98.0, 134.0, 32.0, 44.0},
                            {22.0, 100.0, 112.0, 44.0, 51.0},
                            {7.0, 108.0, 128.0, 51.0, 60.0}};
    for (const Level& l : levels) {
        box(up, -l.half, l.half, l.z0, l.z1, l.y0, l.y1, HULL_PLATES);
        // Windows round each level: the front, both sides.
        const double mid = (l.y0 + l.y1) * 0.5;
        const Frame front{Vec3{0.0, 0.0, l.z0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, -1.0}};
        windows(front, -l.half + 1.0, l.half - 1.0, mid, l.y1 - l.y0 > 8.0 ? 1.4 : 2.0);
        for (double side : {-1.0, 1.0}) {
            const Frame flank{Vec3{side * l.half, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0},
                              Vec3{side, 0.0, 0.0}};
            windows(flank, l.z0 + 1.0, l.z1 - 1.0, mid, 1.2);
            if (l.y1 - l.y0 > 8.0)
                greebles(flank, l.z0 + 0.5, l.z1 - 0.5, l.y0 + 0.4, mid - 1.2, 4.5);
        }
        const Frame roof{Vec3{0.0, l.y1, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}};
        greebles(roof, l.z0 + 1.0, l.z1 - 1.0, -l.half + 1.0, l.half - 1.0, 5.0);
    }
    // Sensor pods beside the bridge.
    for (double side : {-1.0, 1.0})
        box(up, side * 22.0 - 3.0, side * 22.0 + 3.0, 103.0, 109.0, 40.0, 46.0, HULL_ACCENT);
}

void HullMesh::masts()
{
    const Frame up{Vec3{0.0, 0.0, 0.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}};
    // Every mast ends at one of the navigation lights, which the scene draws.
    const int masts[] = {4, 5, 6, 9};
    for (int index : masts) {
        const Vector3& top = NAV_LIGHTS[index].position;
        const double base = index == 9 ? halfHeight(top.z) : 60.0;
        const double half = index == 4 ? 0.7 : 0.45;
        box(up, top.x - half, top.x + half, top.z - half, top.z + half, base, top.y - 0.5, HULL_DARK);
        // Cross arms every few units.
        for (double y = base + 5.0; y < top.y - 3.0; y += 6.0)
            box(up, top.x - 3.0, top.x + 3.0, top.z - 0.25, top.z + 0.25, y, y + 0.4, HULL_DARK);
    }
    // A dish on the mast's foot.
    box(up, -4.0, 4.0, 114.0, 122.0, 60.0, 61.2, HULL_PLATES);
}

void HullMesh::pods()
{
    const double a = 1.0 - CHAMFER;
    for (double side : {-1.0, 1.0}) {
        const double cx = side * POD_X;
        const auto ring = [&](double z, double r, int k) {
            const double xs[SIDES] = {r, r, r * a, -r * a, -r, -r, -r * a, r * a};
            const double ys[SIDES] = {-r * a, r * a, r, r, r * a, -r * a, -r, -r};
            return Vec3{cx + xs[k % SIDES], POD_Y + ys[k % SIDES], z};
        };
        // Body, a cone at the front, a cap at the back.
        const double stations[][2] = {
            {POD_FRONT - 14.0, 1.2}, {POD_FRONT, POD_RADIUS}, {POD_BACK, POD_RADIUS}, {POD_BACK + 2.0, 5.0}};
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < SIDES; ++k) {
                const Vec3 p[4] = {ring(stations[i][0], stations[i][1], k), ring(stations[i][0], stations[i][1], k + 1),
                                   ring(stations[i + 1][0], stations[i + 1][1], k + 1),
                                   ring(stations[i + 1][0], stations[i + 1][1], k)};
                const Vec3 mid = (p[0] + p[1] + p[2] + p[3]) * 0.25;
                Vec3 across = (p[1] - p[0]).normalised();
                double st[4][2];
                for (int c = 0; c < 4; ++c) {
                    st[c][0] = p[c].z * PLATE_SCALE;
                    st[c][1] = p[c].dot(across) * PLATE_SCALE;
                }
                face(p, Vec3{mid.x - cx, mid.y - POD_Y, 0.0}, st, i == 0 ? HULL_ACCENT : HULL_PLATES);
                if (i != 1)
                    continue;
                const Vec3 out = Vec3{mid.x - cx, mid.y - POD_Y, 0.0}.normalised();
                const Frame f{p[0], Vec3{0.0, 0.0, 1.0}, across, out};
                const double width = (p[1] - p[0]).length();
                if (k == (side > 0 ? 0 : 4))
                    windows(f, 4.0, POD_BACK - POD_FRONT - 4.0, width * 0.5, 0.9);
                else if (k % 2 == 0)
                    greebles(f, 1.0, POD_BACK - POD_FRONT - 1.0, 0.3, width - 0.3, 6.0);
            }
        }
        std::vector<Vec3> cap;
        for (int k = 0; k < SIDES; ++k)
            cap.push_back(ring(POD_BACK + 2.0, 5.0, k));
        mesh.fanFacing(cap, Vec3{0.0, 0.0, 1.0}, HULL_DARK);
        // Pylons to the hull's lower flank.
        const Frame flank{Vec3{0.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, 1.0, 0.0}, Vec3{side, 0.0, 0.0}};
        for (double z : {-70.0, 10.0, 90.0})
            box(flank, z, z + 12.0, POD_Y - 2.5, POD_Y + 2.5, 38.0, POD_X - POD_RADIUS + 0.5, HULL_PLATES);
        // The lights' housings at both ends.
        box(flank, POD_FRONT - 16.0, POD_FRONT - 13.0, POD_Y - 0.6, POD_Y + 0.6, POD_X - 0.6, POD_X + 0.6, HULL_DARK);
    }
}

void HullMesh::keel()
{
    const double bottom = -STATIONS[MID].h;
    // A fin under the body: wider at the hull, narrower below.
    const double top0 = -10.0, top1 = 150.0, low0 = 20.0, low1 = 120.0;
    const double depth = 19.0;
    const double y0 = bottom, y1 = bottom - depth;
    for (double side : {-1.0, 1.0}) {
        const Vec3 p[4] = {Vec3{side * 2.5, y0, top0}, Vec3{side * 2.5, y0, top1}, Vec3{side * 1.2, y1, low1},
                           Vec3{side * 1.2, y1, low0}};
        const double st[4][2] = {{top0 * PLATE_SCALE, 0.0},
                                 {top1 * PLATE_SCALE, 0.0},
                                 {low1 * PLATE_SCALE, depth * PLATE_SCALE},
                                 {low0 * PLATE_SCALE, depth * PLATE_SCALE}};
        face(p, Vec3{side, 0.0, 0.0}, st, HULL_PLATES);
        const Frame f{Vec3{side * 2.0, y0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, -1.0, 0.0}, Vec3{side, 0.0, 0.0}};
        windows(f, 25.0, 115.0, 6.0, 0.8);
    }
    const double st[4][2] = {{0.0, 0.0}, {0.1, 0.0}, {0.1, 0.1}, {0.0, 0.1}};
    const Vec3 base[4] = {Vec3{-1.2, y1, low0}, Vec3{1.2, y1, low0}, Vec3{1.2, y1, low1}, Vec3{-1.2, y1, low1}};
    face(base, Vec3{0.0, -1.0, 0.0}, st, HULL_DARK);
    const Vec3 front[4] = {Vec3{-2.5, y0, top0}, Vec3{2.5, y0, top0}, Vec3{1.2, y1, low0}, Vec3{-1.2, y1, low0}};
    face(front, unit(0.0, -0.6, -1.0), st, HULL_DARK);
    const Vec3 back[4] = {Vec3{-2.5, y0, top1}, Vec3{2.5, y0, top1}, Vec3{1.2, y1, low1}, Vec3{-1.2, y1, low1}};
    face(back, unit(0.0, -0.6, 1.0), st, HULL_DARK);
    const Frame down{Vec3{0.0, y1, 0.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{0.0, -1.0, 0.0}};
    box(down, -0.8, 0.8, 39.0, 41.0, 0.0, 1.4, HULL_DARK);
    // Detail on the belly either side of the fin.
    const Frame belly{Vec3{0.0, bottom, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, -1.0, 0.0}};
    const double edge = STATIONS[MID].w * (1.0 - CHAMFER) - 0.5;
    greebles(belly, STATIONS[MID].z + 2.0, STATIONS[MID + 1].z - 2.0, 3.0, edge, 13.0);
    greebles(belly, STATIONS[MID].z + 2.0, STATIONS[MID + 1].z - 2.0, -edge, -3.0, 13.0);
}

void HullMesh::nose()
{
    // A long prong ahead of the bow, carrying the forward strobe.
    const Vector3& tip = NAV_LIGHTS[7].position;
    const Frame ahead{Vec3{0.0, 0.0, 0.0}, Vec3{0.0, 0.0, 1.0}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}};
    box(ahead, tip.z + 0.6, NOSE_Z + 6.0, -0.7, 0.7, tip.y - 0.7, tip.y + 0.7, HULL_DARK);
    box(ahead, NOSE_Z - 2.0, NOSE_Z + 20.0, -2.0, 2.0, 1.0, 5.0, HULL_PLATES);
    // Rows of windows along the tapering bow.
    for (double side : {-1.0, 1.0}) {
        for (double level : {0.35, -0.1}) {
            const double za = -232.0, zb = -142.0;
            const Vec3 a{side * (halfWidth(za) + WINDOW_OFFSET), level * halfHeight(za), za};
            const Vec3 b{side * (halfWidth(zb) + WINDOW_OFFSET), level * halfHeight(zb), zb};
            const Vec3 out{side, 0.0, -0.35};
            const Vec3 lift{0.0, 0.55, 0.0};
            const Vec3 p[4] = {a - lift, b - lift, b + lift, a + lift};
            const int band = random.below(WINDOW_BANDS);
            const double t0 = static_cast<double>(band) / WINDOW_BANDS, t1 = t0 + 1.0 / WINDOW_BANDS;
            const double length = (b - a).length() / 16.0;
            const double st[4][2] = {{0.0, t1}, {length, t1}, {length, t0}, {0.0, t0}};
            face(p, out, st, HULL_WINDOWS);
        }
    }
    // Plating detail along the bow's spine.
    for (double z = -200.0; z < -145.0; z += 11.0) {
        const double h = halfHeight(z);
        const double w = halfWidth(z) * (1.0 - CHAMFER) * 0.6;
        box(ahead, z, z + 8.0, -w, w, h - 0.5, h + 1.2, HULL_PLATES);
    }
}

void HullMesh::nozzle(const Vec3& mouth, double radius, double length, int sides)
{
    const double back = mouth.z - length;
    const double inner = radius * 0.84;
    const double core = mouth.z - length * 0.55;
    const auto at = [&](double r, double a, double z) {
        return Vec3{mouth.x + r * Maths::cos(a), mouth.y + r * Maths::sin(a), z};
    };
    for (int k = 0; k < sides; ++k) {
        const double a0 = 2.0 * Maths::pi * k / sides;
        const double a1 = 2.0 * Maths::pi * (k + 1) / sides;
        const double s0 = static_cast<double>(k) / sides, s1 = static_cast<double>(k + 1) / sides;
        const Vec3 radial{Maths::cos((a0 + a1) * 0.5), Maths::sin((a0 + a1) * 0.5), 0.0};
        // The bell, widening to the mouth, with a collar at its foot.
        const Vec3 bell[4] = {at(radius * 0.78, a0, back), at(radius * 0.78, a1, back), at(radius, a1, mouth.z),
                              at(radius, a0, mouth.z)};
        const double st[4][2] = {{s0, 0.0}, {s1, 0.0}, {s1, length * PLATE_SCALE}, {s0, length * PLATE_SCALE}};
        face(bell, radial + Vec3{0.0, 0.0, -0.2}, st, k % 4 == 0 ? HULL_ACCENT : HULL_DARK);
        const Vec3 lip[4] = {at(inner, a0, mouth.z), at(inner, a1, mouth.z), at(radius, a1, mouth.z),
                             at(radius, a0, mouth.z)};
        face(lip, Vec3{0.0, 0.0, 1.0}, st, HULL_PLATES);
        const Vec3 throat[4] = {at(inner, a0, mouth.z), at(inner, a1, mouth.z), at(radius * 0.5, a1, core),
                                at(radius * 0.5, a0, core)};
        face(throat, radial * -1.0, st, HULL_DARK);
        // The collar stands just clear of the stern plate.
        const Vec3 collar[4] = {at(radius * 0.92, a0, STERN_Z + 0.5), at(radius * 0.92, a1, STERN_Z + 0.5),
                                at(radius * 0.92, a1, STERN_Z + 3.5), at(radius * 0.92, a0, STERN_Z + 3.5)};
        face(collar, radial, st, HULL_PLATES);
    }
    // The white-hot core deep in the throat.
    std::vector<Vec3> disc;
    for (int k = 0; k < sides; ++k)
        disc.push_back(at(radius * 0.5, 2.0 * Maths::pi * k / sides, core));
    mesh.fanFacing(disc, Vec3{0.0, 0.0, 1.0}, HULL_GLOW);
}

void HullMesh::engines()
{
    for (int i = 0; i < ENGINE_COUNT; ++i) {
        const Engine& e = ENGINES[i];
        const bool main = i < MAIN_ENGINES;
        nozzle(Vec3{e.mouth.x, e.mouth.y, e.mouth.z}, e.radius, e.mouth.z - STERN_Z + 6.0, main ? 28 : 16);
    }
    // Heat fins between the nozzles.
    const Frame stern{Vec3{0.0, 0.0, STERN_Z}, Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}};
    for (double x : {-14.5, 14.5})
        for (double y = -12.0; y <= 12.0; y += 6.0)
            box(stern, x - 0.6, x + 0.6, y - 2.0, y + 2.0, 0.0, 6.0, HULL_DARK);
    greebles(stern, -40.0, 40.0, 13.5, 21.0, 6.0);
    greebles(stern, -40.0, 40.0, -21.0, -13.5, 6.0);
}

void HullMesh::build()
{
    body();
    trench();
    sides();
    tower();
    masts();
    pods();
    keel();
    nose();
    engines();
}
