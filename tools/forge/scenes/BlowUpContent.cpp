// The blow-up's content: a crane-like camera path, two kinds of debris as small solid meshes, and the soft pictures
// the blast is drawn with (white, so the scene tints them).
#include "BlowUpContent.h"

#include "CameraPathFile.h"
#include "Forge.h"
#include "Maths.h"
#include "MeshFile.h"
#include "Noise.h"
#include "Random.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace BlowUpLayout;

const Vec3 ZERO{ZERO_X, 0.0, ZERO_Z};
// Down the race's last street, then pulled high over the city's edge with the fill, then drifting back with the smoke.
const Vec3 EYES[3] = {{40.0, 2.6, ZERO_Z}, {-40.0, 260.0, ZERO_Z + 8.0}, {-115.0, 300.0, ZERO_Z + 20.0}};
const Vec3 LOOKS[3] = {{ZERO_X, 10.0, ZERO_Z}, {ZERO_X, 0.0, ZERO_Z}, {ZERO_X, 70.0, ZERO_Z}};

Vec3 mix(const Vec3& a, const Vec3& b, double t)
{
    return a + (b - a) * t;
}

// Where along the two legs the camera is: eased into the rise, eased out of the drift.
double leg(double t, int& from)
{
    if (t < CRASH) {
        from = 0;
        return Maths::smoothstep(0.0, CRASH, t);
    }
    from = 1;
    const double s = Maths::clamp((t - CRASH) / (SECONDS - CRASH), 0.0, 1.0);
    return 1.0 - (1.0 - s) * (1.0 - s);
}

// A closed solid from its eight corners (bottom four, then top four, both counter-clockwise from above).
void solid(MeshBuilder& mesh, const Vec3 (&c)[8], int material)
{
    static const int faces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    for (const auto& f : faces)
        mesh.quad(mesh.vertex(c[f[0]], 0.0, 0.0), mesh.vertex(c[f[1]], 1.0, 0.0), mesh.vertex(c[f[2]], 1.0, 1.0),
                  mesh.vertex(c[f[3]], 0.0, 1.0), material);
}

void block(MeshBuilder& mesh, const Vec3& low, const Vec3& high, int material)
{
    const Vec3 c[8] = {{low.x, low.y, high.z},  {high.x, low.y, high.z}, {high.x, low.y, low.z},
                       {low.x, low.y, low.z},   {low.x, high.y, high.z}, {high.x, high.y, high.z},
                       {high.x, high.y, low.z}, {low.x, high.y, low.z}};
    solid(mesh, c, material);
}

}  // namespace

Vec3 BlowUpContent::cameraAt(double t)
{
    int from = 0;
    const double s = leg(t, from);
    return mix(EYES[from], EYES[from + 1], s);
}

Vec3 BlowUpContent::targetAt(double t)
{
    int from = 0;
    const double s = leg(t, from);
    return mix(LOOKS[from], LOOKS[from + 1], s);
}

void BlowUpContent::debris(MeshBuilder& mesh, int kind)
{
    if (kind == 1) {
        // An I-beam: the web and its two flanges.
        block(mesh, {-0.05, -0.25, -2.5}, {0.05, 0.25, 2.5}, 0);
        block(mesh, {-0.25, 0.25, -2.5}, {0.25, 0.33, 2.5}, 0);
        block(mesh, {-0.25, -0.33, -2.5}, {0.25, -0.25, 2.5}, 0);
        return;
    }
    // A broken lump: a box with every corner pushed about.
    Random random(0xc4u);
    Vec3 c[8];
    for (int k = 0; k < 8; ++k) {
        const double x = (k == 1 || k == 2 || k == 5 || k == 6) ? 1.0 : -1.0;
        const double z = (k == 0 || k == 1 || k == 4 || k == 5) ? 0.7 : -0.7;
        const double y = k < 4 ? -0.55 : 0.55;
        c[k] = {x * random.range(0.6, 1.1), y * random.range(0.7, 1.2), z * random.range(0.6, 1.2)};
    }
    solid(mesh, c, 0);
}

Image BlowUpContent::fire()
{
    const Noise noise(0xf17eu);
    return Image::square(128, [&](double u, double v, int, int) {
        const double dx = u * 2.0 - 1.0;
        const double dy = v * 2.0 - 1.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        // A billowing ball: bright and full in the middle, torn at the edge.
        const double billow = noise.fbm(u * 4.0, v * 4.0, 4, 5);
        const double k = Maths::clamp(1.05 - r * 1.15 + 0.35 * billow, 0.0, 1.0);
        const double b = Maths::pow(k, 1.4) * (0.8 + 0.2 * billow);
        return Rgba{static_cast<float>(b), static_cast<float>(b), static_cast<float>(b), 1.0f};
    });
}

Image BlowUpContent::smoke()
{
    const Noise noise(0x5a0eu);
    return Image::square(128, [&](double u, double v, int, int) {
        const double dx = u * 2.0 - 1.0;
        const double dy = v * 2.0 - 1.0;
        const double r = std::sqrt(dx * dx + dy * dy);
        const double billow = noise.fbm(u * 3.0, v * 3.0, 3, 5);
        const double a = Maths::smoothstep(0.0, 0.55, 1.0 - r + 0.3 * billow) * 0.92;
        // Lighter where the puff bulges towards the light.
        const double shade = 0.75 + 0.25 * Maths::clamp(0.5 + billow - dy * 0.3, 0.0, 1.0);
        return Rgba{static_cast<float>(shade), static_cast<float>(shade), static_cast<float>(shade),
                    static_cast<float>(a)};
    });
}

Image BlowUpContent::shock()
{
    // Across the ring from inside to out: a glow building to a bright front just short of the edge.
    Image image(256, 32);
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 256; ++x) {
            const double u = (x + 0.5) / 256.0;
            const double k = Maths::pow(Maths::smoothstep(0.0, 0.86, u), 3.0) * (1.0 - Maths::smoothstep(0.86, 1.0, u));
            image.at(x, y) = Rgba{static_cast<float>(k), static_cast<float>(k), static_cast<float>(k), 1.0f};
        }
    }
    return image;
}

std::vector<ForgedFile> BlowUpContent::files() const
{
    std::vector<ForgedFile> list{ForgedFile::file(CAMERA_PATH)};
    for (const char* mesh : DEBRIS_MESHES)
        list.push_back(ForgedFile::file(mesh));
    list.push_back(ForgedFile::picture(FIRE, 128, 128));
    list.push_back(ForgedFile::picture(SMOKE, 128, 128));
    list.push_back(ForgedFile::picture(SHOCK, 256, 32));
    return list;
}

bool BlowUpContent::build(Forge& forge)
{
    bool ok = forge.saveFile(CAMERA_PATH, [](const std::string& path) {
        return CameraPathFile::write(path, CAMERA_NAME, SECONDS, FRAMES_PER_SECOND, KEY_STEP, cameraAt, targetAt);
    });
    // Dark, charred: the fire behind them gives their edges what colour they have.
    static const Color colours[DEBRIS_KINDS][2] = {
        {Color(0.05f, 0.045f, 0.04f, 1.0f), Color(0.22f, 0.2f, 0.18f, 1.0f)},
        {Color(0.05f, 0.03f, 0.02f, 1.0f), Color(0.25f, 0.13f, 0.07f, 1.0f)}};
    for (int k = 0; k < DEBRIS_KINDS; ++k) {
        MeshBuilder builder;
        debris(builder, k);
        Material* material =
            MeshFile::colourMaterial(DEBRIS_MATERIALS[k], colours[k][0], colours[k][1], MeshFile::grey(0.2f), 20.0f);
        ok = MeshFile::write(forge, DEBRIS_MESHES[k], builder, false, {material}) && ok;
    }
    ok = forge.savePicture(FIRE, fire()) && ok;
    ok = forge.savePicture(SMOKE, smoke()) && ok;
    ok = forge.savePicture(SHOCK, shock()) && ok;
    return ok;
}
