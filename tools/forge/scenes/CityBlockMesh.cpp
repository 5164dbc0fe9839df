// The city block: every block of the grid split into lots, a building on each, the streets between them
// with their lamps and signs. Only faces someone can see are made: walls hidden by a taller neighbour are
// left out, walls above a lower one start at its roof.
#include "CityBlockMesh.h"

#include "Maths.h"
#include "Random.h"

#include "effects/CityLayout.h"

#include <algorithm>

namespace {

using namespace CityLayout;

const uint64_t PLAN_SEED = 0xC17B10C5ull;
// Downtown, where the towers crowd, is the middle of the grid.
const double DOWNTOWN = (STREETS - 1) * PITCH * 0.5;
const double POLE = 0.09;
const double ARM = 0.06;
const double SIGN_POLE_HEIGHT = 3.1;
const double SIGN_WIDTH = 1.2;
const double SIGN_HEIGHT = 0.4;
const double SIGN_CORNER = 6.6;

double streetAt(int i)
{
    return i * PITCH;
}

// Where lots split a block side of `length` metres into `count`, from its start.
std::vector<double> cuts(double length, int count, Random& random)
{
    std::vector<double> at{0.0};
    for (int k = 1; k < count; ++k)
        at.push_back(length * k / count + random.range(-3.0, 3.0));
    at.push_back(length);
    return at;
}

// Towers crowd downtown; low blocks fill the edges.
double pickHeight(double downtown, Random& random)
{
    const double r = random.uniform();
    if (r < 0.1 + 0.4 * downtown)
        return 42.0 + random.uniform() * (30.0 + 40.0 * downtown);
    if (r < 0.72)
        return 18.0 + random.uniform() * 20.0;
    return MIN_HEIGHT + random.uniform() * 6.0;
}

int pickFacade(double height, Random& random)
{
    if (height > 40.0)
        return random.uniform() < 0.6 ? FACADE_GLASS : FACADE_STRIPS;
    static const int middle[] = {FACADE_FLATS, FACADE_STRIPS, FACADE_BRICK, FACADE_FLATS};
    static const int low[] = {FACADE_BRICK, FACADE_FLATS, FACADE_BRICK};
    if (height > 20.0)
        return middle[random.below(4)];
    return low[random.below(3)];
}

// A road strip along x (alongX) or z, centred on `across`, from `from` to `to`: u runs across the road
// and v along it, so the picture's lane lines follow the road.
void road(MeshBuilder& mesh, bool alongX, double across, double from, double to)
{
    const double tile = 2.0 * ROAD_HALF;
    const double side[4] = {ROAD_HALF, ROAD_HALF, -ROAD_HALF, -ROAD_HALF};
    const double along[4] = {from, to, to, from};
    int index[4];
    for (int k = 0; k < 4; ++k) {
        // Along z the outline is walked the other way round to keep it facing up.
        const double offset = alongX ? side[k] : -side[k];
        const Vec3 p = alongX ? Vec3{along[k], 0.0, across + offset} : Vec3{across + offset, 0.0, along[3 - k]};
        index[k] = mesh.vertex(p, (offset + ROAD_HALF) / tile, (alongX ? along[k] : along[3 - k]) / tile);
    }
    mesh.quad(index[0], index[1], index[2], index[3], ROAD);
}

}  // namespace

CityBlockMesh::CityBlockMesh()
{
    Random random(PLAN_SEED);
    for (int bx = FIRST_BLOCK; bx <= LAST_BLOCK; ++bx)
        for (int bz = FIRST_BLOCK; bz <= LAST_BLOCK; ++bz)
            planBlock(bx, bz, random);
}

bool CityBlockMesh::inside(const Vec3& p, double margin) const
{
    for (const Building& b : buildings)
        if (p.x > b.x0 - margin && p.x < b.x1 + margin && p.z > b.z0 - margin && p.z < b.z1 + margin &&
            p.y < b.height + margin)
            return true;
    return false;
}

void CityBlockMesh::planBlock(int bx, int bz, Random& random)
{
    const double x0 = bx * PITCH + BLOCK_EDGE;
    const double z0 = bz * PITCH + BLOCK_EDGE;
    const double size = PITCH - 2.0 * BLOCK_EDGE;
    const double cx = x0 + size * 0.5 - DOWNTOWN;
    const double cz = z0 + size * 0.5 - DOWNTOWN;
    const double downtown = Maths::clamp(1.0 - (cx * cx + cz * cz) / (250.0 * 250.0), 0.0, 1.0);
    const int nx = random.uniform() < 0.55 ? 2 : 3;
    const int nz = random.uniform() < 0.55 ? 2 : 3;
    const std::vector<double> xs = cuts(size, nx, random);
    const std::vector<double> zs = cuts(size, nz, random);

    std::vector<double> heights(static_cast<size_t>(nx * nz));
    for (double& h : heights)
        h = pickHeight(downtown, random);
    const auto at = [&](int a, int b) { return heights[static_cast<size_t>(b * nx + a)]; };
    // A lot in the middle is seen only above its neighbours: it stands taller than all of them.
    if (nx == 3 && nz == 3) {
        double tallest = 0.0;
        for (double h : heights)
            tallest = std::max(tallest, h);
        heights[4] = tallest + random.range(6.0, 30.0);
    }

    for (int b = 0; b < nz; ++b) {
        for (int a = 0; a < nx; ++a) {
            Building building{};
            building.x0 = x0 + xs[a];
            building.x1 = x0 + xs[a + 1];
            building.z0 = z0 + zs[b];
            building.z1 = z0 + zs[b + 1];
            building.height = at(a, b);
            building.facade = pickFacade(building.height, random);
            building.shop = SHOP_BRIGHT + random.below(SHOP_KINDS);
            building.street[NORTH] = b == nz - 1;
            building.street[EAST] = a == nx - 1;
            building.street[SOUTH] = b == 0;
            building.street[WEST] = a == 0;
            building.beside[NORTH] = b + 1 < nz ? at(a, b + 1) : 0.0;
            building.beside[EAST] = a + 1 < nx ? at(a + 1, b) : 0.0;
            building.beside[SOUTH] = b > 0 ? at(a, b - 1) : 0.0;
            building.beside[WEST] = a > 0 ? at(a - 1, b) : 0.0;
            buildings.push_back(building);
        }
    }
}

void CityBlockMesh::wall(MeshBuilder& mesh, double x0, double z0, double x1, double z1, double y0, double y1, double u0,
                         double tileWidth, double v0, double tileHeight, int material)
{
    const double length = Maths::clamp(x1 - x0, 0.0, 1e9) + Maths::clamp(x0 - x1, 0.0, 1e9) +
                          Maths::clamp(z1 - z0, 0.0, 1e9) + Maths::clamp(z0 - z1, 0.0, 1e9);
    const double u1 = u0 + length / tileWidth;
    const int a = mesh.vertex({x0, y0, z0}, u0, v0 - y0 / tileHeight);
    const int b = mesh.vertex({x1, y0, z1}, u1, v0 - y0 / tileHeight);
    const int c = mesh.vertex({x1, y1, z1}, u1, v0 - y1 / tileHeight);
    const int d = mesh.vertex({x0, y1, z0}, u0, v0 - y1 / tileHeight);
    mesh.quad(a, b, c, d, material);
}

void CityBlockMesh::floor(MeshBuilder& mesh, double x0, double z0, double x1, double z1, double y, double tile,
                          int material)
{
    const int a = mesh.vertex({x0, y, z1}, x0 / tile, z1 / tile);
    const int b = mesh.vertex({x1, y, z1}, x1 / tile, z1 / tile);
    const int c = mesh.vertex({x1, y, z0}, x1 / tile, z0 / tile);
    const int d = mesh.vertex({x0, y, z0}, x0 / tile, z0 / tile);
    mesh.quad(a, b, c, d, material);
}

void CityBlockMesh::box(MeshBuilder& mesh, double x0, double y0, double z0, double x1, double y1, double z1,
                        double tile, int material)
{
    wall(mesh, x0, z1, x1, z1, y0, y1, 0.0, tile, 0.0, tile, material);
    wall(mesh, x1, z1, x1, z0, y0, y1, 0.0, tile, 0.0, tile, material);
    wall(mesh, x1, z0, x0, z0, y0, y1, 0.0, tile, 0.0, tile, material);
    wall(mesh, x0, z0, x0, z1, y0, y1, 0.0, tile, 0.0, tile, material);
    floor(mesh, x0, z0, x1, z1, y1, tile, material);
}

void CityBlockMesh::build(MeshBuilder& mesh) const
{
    streets(mesh);
    sidewalks(mesh);
    // The details of each building are drawn from its own stream, so one change stays local.
    for (size_t k = 0; k < buildings.size(); ++k) {
        Random random(PLAN_SEED + 1 + k);
        building(mesh, buildings[k], random);
    }
    lamps(mesh);
    oneWaySigns(mesh);
}

void CityBlockMesh::streets(MeshBuilder& mesh) const
{
    const double end = LANE_START + LANE_LENGTH;
    for (int axis = 0; axis < 2; ++axis) {
        for (int s = 0; s < STREETS; ++s) {
            double from = LANE_START;
            for (int i = 0; i <= STREETS; ++i) {
                const double to = i < STREETS ? streetAt(i) - ROAD_HALF : end;
                road(mesh, axis == 0, streetAt(s), from, to);
                from = streetAt(i) + ROAD_HALF;
            }
        }
    }
    for (int i = 0; i < STREETS; ++i) {
        for (int j = 0; j < STREETS; ++j) {
            const double x = streetAt(i);
            const double z = streetAt(j);
            const int a = mesh.vertex({x - ROAD_HALF, 0.0, z + ROAD_HALF}, 0.0, 1.0);
            const int b = mesh.vertex({x + ROAD_HALF, 0.0, z + ROAD_HALF}, 1.0, 1.0);
            const int c = mesh.vertex({x + ROAD_HALF, 0.0, z - ROAD_HALF}, 1.0, 0.0);
            const int d = mesh.vertex({x - ROAD_HALF, 0.0, z - ROAD_HALF}, 0.0, 0.0);
            mesh.quad(a, b, c, d, CROSSING);
        }
    }
}

void CityBlockMesh::sidewalks(MeshBuilder& mesh) const
{
    const double band = BLOCK_EDGE - ROAD_HALF;
    const double tile = 4.0;
    for (int bx = FIRST_BLOCK; bx <= LAST_BLOCK; ++bx) {
        for (int bz = FIRST_BLOCK; bz <= LAST_BLOCK; ++bz) {
            const double x0 = bx * PITCH + BLOCK_EDGE;
            const double z0 = bz * PITCH + BLOCK_EDGE;
            const double x1 = (bx + 1) * PITCH - BLOCK_EDGE;
            const double z1 = (bz + 1) * PITCH - BLOCK_EDGE;
            floor(mesh, x0 - band, z1, x1 + band, z1 + band, CURB, tile, SIDEWALK);
            floor(mesh, x0 - band, z0 - band, x1 + band, z0, CURB, tile, SIDEWALK);
            floor(mesh, x0 - band, z0, x0, z1, CURB, tile, SIDEWALK);
            floor(mesh, x1, z0, x1 + band, z1, CURB, tile, SIDEWALK);
            const double ex0 = x0 - band;
            const double ez0 = z0 - band;
            const double ex1 = x1 + band;
            const double ez1 = z1 + band;
            wall(mesh, ex0, ez1, ex1, ez1, 0.0, CURB, 0.0, tile, 0.0, tile, SIDEWALK);
            wall(mesh, ex1, ez1, ex1, ez0, 0.0, CURB, 0.0, tile, 0.0, tile, SIDEWALK);
            wall(mesh, ex1, ez0, ex0, ez0, 0.0, CURB, 0.0, tile, 0.0, tile, SIDEWALK);
            wall(mesh, ex0, ez0, ex0, ez1, 0.0, CURB, 0.0, tile, 0.0, tile, SIDEWALK);
        }
    }
}

void CityBlockMesh::building(MeshBuilder& mesh, const Building& b, Random& random) const
{
    const double corners[SIDES + 1][2] = {{b.x0, b.z1}, {b.x1, b.z1}, {b.x1, b.z0}, {b.x0, b.z0}, {b.x0, b.z1}};
    // Windows and floors start at a random place in the picture, so neighbours do not match.
    const double u0 = random.below(8) / 8.0;
    const double floorsUp = random.below(8) / 8.0;
    const double facadeV = floorsUp + SHOP_HEIGHT / FACADE_TILE_HEIGHT;
    const double shopU = random.below(4) / 4.0;
    for (int side = 0; side < SIDES; ++side) {
        const double* p = corners[side];
        const double* q = corners[side + 1];
        if (b.street[side]) {
            wall(mesh, p[0], p[1], q[0], q[1], 0.0, SHOP_HEIGHT, shopU, SHOP_TILE_WIDTH, 1.0, SHOP_HEIGHT, b.shop);
            wall(mesh, p[0], p[1], q[0], q[1], SHOP_HEIGHT, b.height, u0, FACADE_TILE_WIDTH, facadeV,
                 FACADE_TILE_HEIGHT, b.facade);
        } else if (b.beside[side] < b.height) {
            wall(mesh, p[0], p[1], q[0], q[1], b.beside[side], b.height, u0, FACADE_TILE_WIDTH, facadeV,
                 FACADE_TILE_HEIGHT, b.facade);
        }
    }
    floor(mesh, b.x0, b.z0, b.x1, b.z1, b.height, 8.0, ROOF);
    roof(mesh, b, random);
}

void CityBlockMesh::roof(MeshBuilder& mesh, const Building& b, Random& random) const
{
    const double w = b.x1 - b.x0;
    const double d = b.z1 - b.z0;
    const double top = b.height;
    // Towers step back into a crown and carry a mast.
    if (top > 40.0) {
        const double inset = 0.18;
        const double crown = random.range(4.0, 9.0);
        const double cx0 = b.x0 + w * inset;
        const double cz0 = b.z0 + d * inset;
        const double cx1 = b.x1 - w * inset;
        const double cz1 = b.z1 - d * inset;
        const double u0 = random.below(8) / 8.0;
        const double v0 = random.below(8) / 8.0;
        const double corners[SIDES + 1][2] = {{cx0, cz1}, {cx1, cz1}, {cx1, cz0}, {cx0, cz0}, {cx0, cz1}};
        for (int side = 0; side < SIDES; ++side)
            wall(mesh, corners[side][0], corners[side][1], corners[side + 1][0], corners[side + 1][1], top, top + crown,
                 u0, FACADE_TILE_WIDTH, v0, FACADE_TILE_HEIGHT, b.facade);
        floor(mesh, cx0, cz0, cx1, cz1, top + crown, 8.0, ROOF);
        if (top > 60.0) {
            const double mx = (cx0 + cx1) * 0.5;
            const double mz = (cz0 + cz1) * 0.5;
            box(mesh, mx - 0.3, top + crown, mz - 0.3, mx + 0.3, top + crown + random.range(10.0, 18.0), mz + 0.3, 1.0,
                METAL);
        }
        return;
    }
    // Lower roofs: plant rooms, vents and water tanks.
    const int count = 1 + random.below(3);
    for (int k = 0; k < count; ++k) {
        const double sx = random.range(2.0, 5.0);
        const double sz = random.range(2.0, 5.0);
        if (sx > w - 2.0 || sz > d - 2.0)
            continue;
        const double x = random.range(b.x0 + 1.0, b.x1 - 1.0 - sx);
        const double z = random.range(b.z0 + 1.0, b.z1 - 1.0 - sz);
        box(mesh, x, top, z, x + sx, top + random.range(1.5, 3.5), z + sz, 2.0, METAL);
    }
}

void CityBlockMesh::lamps(MeshBuilder& mesh) const
{
    for (int k = 0; k < LAMP_COUNT; ++k) {
        const Lamp l = lamp(k);
        // A three-sided pole, then an arm over the road with its underside and the side facing it.
        const double a = 0.0;
        Vec3 base[3];
        for (int s = 0; s < 3; ++s) {
            const double angle = a + 2.0 * Maths::pi * s / 3.0;
            base[s] = {l.x + POLE * Maths::cos(angle), CURB, l.z + POLE * Maths::sin(angle)};
        }
        for (int s = 0; s < 3; ++s) {
            const Vec3& p = base[s];
            const Vec3& q = base[(s + 1) % 3];
            const int i0 = mesh.vertex(p, 0.0, 1.0);
            const int i1 = mesh.vertex({q.x, q.y, q.z}, 0.3, 1.0);
            const int i2 = mesh.vertex({q.x, LAMP_HEIGHT, q.z}, 0.3, 0.0);
            const int i3 = mesh.vertex({p.x, LAMP_HEIGHT, p.z}, 0.0, 0.0);
            // The base points run clockwise seen from above, so this winding faces out.
            mesh.quad(i1, i0, i3, i2, METAL);
        }
        const double endX = l.x + l.towardRoadX * LAMP_REACH;
        const double endZ = l.z + l.towardRoadZ * LAMP_REACH;
        const double sideX = -l.towardRoadZ * ARM;
        const double sideZ = l.towardRoadX * ARM;
        const double y = LAMP_HEIGHT - ARM;
        const int a0 = mesh.vertex({l.x - sideX, y, l.z - sideZ}, 0.0, 0.0);
        const int a1 = mesh.vertex({l.x + sideX, y, l.z + sideZ}, 0.1, 0.0);
        const int a2 = mesh.vertex({endX + sideX, y, endZ + sideZ}, 0.1, 1.0);
        const int a3 = mesh.vertex({endX - sideX, y, endZ - sideZ}, 0.0, 1.0);
        // Seen from below, whichever way the arm points.
        mesh.quad(a0, a1, a2, a3, METAL);
        mesh.quad(a3, a2, a1, a0, METAL);
    }
}

void CityBlockMesh::oneWaySigns(MeshBuilder& mesh) const
{
    // Each crossing shows the way of both its streets: the x street's sign on the north-east corner,
    // the z street's on the south-west, each plate along its street, readable from the other one.
    // The picture holds the arrow pointing right in its top half and pointing left below.
    const double yTop = SIGN_POLE_HEIGHT;
    const double yBottom = yTop - SIGN_HEIGHT;
    const double tileHeight = 2.0 * SIGN_HEIGHT;
    for (int i = 0; i < STREETS; ++i) {
        for (int j = 0; j < STREETS; ++j) {
            for (int which = 0; which < 2; ++which) {
                const bool alongX = which == 0;
                const double corner = alongX ? SIGN_CORNER : -SIGN_CORNER;
                const double cx = streetAt(i) + corner;
                const double cz = streetAt(j) + corner;
                const int direction = alongX ? xStreetDirection(j) : zStreetDirection(i);
                box(mesh, cx - 0.04, CURB, cz - 0.04, cx + 0.04, yBottom, cz + 0.04, 1.0, METAL);
                const double h = SIGN_WIDTH * 0.5;
                const double p[2] = {alongX ? cx - h : cx, alongX ? cz : cz - h};
                const double q[2] = {alongX ? cx + h : cx, alongX ? cz : cz + h};
                // The face walked from p to q has its right towards growing x or z.
                const double rightV = yTop / tileHeight;
                const double leftV = rightV + 0.5;
                wall(mesh, p[0], p[1], q[0], q[1], yBottom, yTop, 0.0, SIGN_WIDTH, direction > 0 ? rightV : leftV,
                     tileHeight, ONE_WAY);
                wall(mesh, q[0], q[1], p[0], p[1], yBottom, yTop, 0.0, SIGN_WIDTH, direction > 0 ? leftV : rightV,
                     tileHeight, ONE_WAY);
            }
        }
    }
}
