// The process-wide camera registry with one active camera, stored as a CMGR chunk.
#pragma once

#include <istream>
#include <ostream>

class Camera;

class CameraMgr {
public:
    struct Node {
        Camera* camera;
        Node* next;
    };

    static CameraMgr* getHandle();
    ~CameraMgr();
    CameraMgr(const CameraMgr&) = delete;
    CameraMgr& operator=(const CameraMgr&) = delete;

    // Takes ownership; false for null or a name already registered. The first camera becomes active.
    bool add(Camera* camera);
    // Unlinks and destroys the named camera; the active entry is cleared when it was that one.
    bool remove(const char* name);
    Camera* find(const char* name) const;
    Node* findNode(const char* name) const;

    // false for a camera that is not registered; otherwise it is sized to the window and made active.
    bool setActiveCamera(const char* name);
    bool setActiveCamera(Camera* camera);
    Camera* getActiveCamera() const;
    // Resizes the active camera, then remembers the window size for later activations.
    bool onResize(int width, int height);

    void initiate();
    // Destroys every registered camera.
    void shutdown();

    int getNumCameras() const { return numCameras; }
    int getWidth() const { return width; }
    int getHeight() const { return height; }

    bool load(std::istream& in);
    bool save(std::ostream& out);
    bool load(const char* file);
    bool save(const char* file);

private:
    CameraMgr();
    bool activate(Node* node);

    int width;
    int height;
    int numCameras;
    Node* head;
    Node* active;
};
