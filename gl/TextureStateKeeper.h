// Keeps the 2D texture state drawing relies on as it was across an upload made between frames.
#pragma once

class TextureStateKeeper {
public:
    // Notes the active unit's 2D texture binding and whether 2D texturing is on there, and the pixel store.
    TextureStateKeeper();
    // Puts them back.
    ~TextureStateKeeper();
    TextureStateKeeper(const TextureStateKeeper&) = delete;
    TextureStateKeeper& operator=(const TextureStateKeeper&) = delete;

private:
    int binding;
    bool enabled;
};
