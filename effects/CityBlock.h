// The forged city block, drawn from its octree: the leaves the camera can see, surface by surface, unlit.
#pragma once

#include "effects/CityLayout.h"
#include "math/Color.h"
#include "math/Vector3.h"

#include <cstdint>
#include <memory>
#include <vector>

class Camera;
class Octree;
class Texture;
class TextureMaterial;

class CityBlock {
public:
    // The night's colours: the sky straight up, and at the horizon the city's own glow, which the fog takes.
    static const Color ZENITH;
    static const Color HORIZON;
    // Beyond this distance the small things (poles, signs, roof plant) are left out.
    static constexpr float DETAIL_DISTANCE = 140.0f;

    CityBlock();
    ~CityBlock();
    CityBlock(const CityBlock&) = delete;
    CityBlock& operator=(const CityBlock&) = delete;

    // The octree and the pictures of its surfaces, shared with a scene that holds them already (the blast
    // follows the street without a second load). A missing piece is reported once in the scene's name;
    // without the octree nothing is drawn, without a picture its surface takes a plain colour.
    // loadNext loads one piece ahead of the scene's start (a picture, the octree, its index; or the block
    // another scene holds), keeping the texture state of the scene drawing meanwhile; false when every
    // piece had been tried. load loads what is left and readies the block for drawing.
    bool loadNext(const char* scene);
    bool triedAll() const { return tried == PIECES; }
    bool load(const char* scene);
    void release();
    // Gives back the surfaces' pictures, for the last scene in the city; nothing while a scene still holds the
    // block. The next load reads them again.
    static void releasePictures();

    // The leaves in view, one draw per run of neighbouring leaves of one surface; the pictures are
    // modulated by the tint. Texturing is left off and the depth and colour state as found.
    void draw(const Camera& camera, const Color& tint);

    // The night's clear colour and fog, from the distance where the fog starts to where it hides all;
    // the night's colours dimmed (1 as they are); and back to black without fog.
    static void setupNight(float fogStart, float fogEnd);
    static void setNightLight(float light);
    static void endNight();
    // The sky round the eye and the open ground round the city, dimmed like the night: drawn after the
    // block, only where it leaves them showing.
    static void drawSurroundings(const Camera& camera, float light);

    // Whether a box lies wholly behind a wall of the street the eye stands in, below the lowest roof:
    // every block side is a continuous wall at least the lowest building tall, broken only where the
    // cross streets meet it, so what is seen through that wall's plane within one block side is hidden.
    static bool behindStreetWall(const Vector3& eye, const Vector3& low, const Vector3& high);

    const Octree* getOctree() const;
    // Faces in the file, and those the last draw sent.
    int getFaceCount() const;
    int getDrawnFaces() const { return drawnFaces; }
    // Leaves with faces, and how many the last draw found in view.
    int getLeafCount() const;
    int getVisibleLeaves() const { return visibleCount; }

private:
    struct Data;
    // The pictures, then the octree, then its index.
    enum { OCTREE_PIECE = CityLayout::SURFACE_COUNT, INDEX_PIECE, PIECES };

    void loadPiece(int piece, const char* scene);
    // Draws this block from now on.
    void adopt(const std::shared_ptr<Data>& block);
    // One draw of `count` indices from `from`, binding the surface first if it is not yet.
    void drawRun(int surface, int from, int count, const Color& tint, bool& bound);

    // The block while some scene holds it.
    static std::weak_ptr<Data> shared;

    // The block ready to draw, and the one this block is loading piece by piece.
    std::shared_ptr<Data> data;
    std::shared_ptr<Data> loading;
    int tried;
    // The leaves in view this frame, and the faces drawn.
    std::vector<int> visible;
    int visibleCount;
    int drawnFaces;
};
