// The process-wide light registry: lighting model, lighting switch, re-aiming after the camera, LMGR chunk.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>

class Camera;
class Light;

class LightMgr {
public:
    static LightMgr* getHandle();
    ~LightMgr();
    LightMgr(const LightMgr&) = delete;
    LightMgr& operator=(const LightMgr&) = delete;

    // Two-sided lighting, local viewer, separate specular colour; then lighting on.
    void initiate();
    // Shuts down and destroys every light.
    void shutdown();

    void turnLightingOn();
    void turnLightingOff();
    void toggleLighting();
    bool isLightingOn() const { return lightingOn != 0; }

    // Re-sends the positions of the lights that are on; call after the camera's lookAt().
    void reorient(const Camera& camera);

    // Takes ownership, links at the front and initiates the light; names may repeat.
    bool add(Light* light);
    bool remove(const char* name);
    Light* find(const char* name) const;
    // Counting from 0 at the front; null past the end of the list.
    Light* getLight(int i) const;
    // Lights of the last load or added since; older ones stay in the list.
    int getNumLights() const { return numLights; }

    // Loaded lights are linked but not initiated: they take a unit at initiate().
    bool load(std::istream& in);
    bool save(std::ostream& out);
    bool load(const char* file);
    bool save(const char* file);

private:
    LightMgr();
    void link(Light* light);

    struct Node {
        Light* light;
        Node* next;
    };

    uint8_t lightingOn;
    int numLights;
    Node* head;
};
