// Growable array of faces, persisted as a FARR chunk.
#pragma once

#include "scene/Face.h"

#include <istream>
#include <ostream>

class FaceArray {
public:
    FaceArray();
    FaceArray(const FaceArray& other);
    FaceArray& operator=(const FaceArray& other);
    ~FaceArray();

    // n empty faces of storage, none in use; false for a negative n.
    bool create(int n);
    // Grows (or shrinks) the storage, keeping the faces that still fit.
    bool resize(int n);
    void clear();
    // Copies the face; false when the array is full.
    bool addFace(const Face& face);

    int getNumFaces() const { return numFaces; }
    int getCapacity() const { return capacity; }
    Face* getFaces() { return faces; }
    const Face* getFaces() const { return faces; }
    Face& operator[](int i) { return faces[i]; }
    const Face& operator[](int i) const { return faces[i]; }

    bool load(std::istream& in);
    bool save(std::ostream& out) const;

private:
    void release();

    int numFaces;
    int capacity;
    Face* faces;
};
