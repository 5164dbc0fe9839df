// One entry of a potentially visible set: a node seen from the set's owner, in a doubly linked list.
#pragma once

#include <istream>
#include <ostream>

class OctreeNode;

class OctreeVisible {
public:
    OctreeVisible() : reallyVisible(false), node(nullptr), prev(nullptr), next(nullptr) {}

    void setNode(OctreeNode* n) { node = n; }
    OctreeNode* getNode() const { return node; }
    bool isReallyVisible() const { return reallyVisible; }
    void markReallyVisible() { reallyVisible = true; }

    OctreeVisible* getPrev() const { return prev; }
    OctreeVisible* getNext() const { return next; }
    void setPrev(OctreeVisible* p) { prev = p; }
    void setNext(OctreeVisible* n) { next = n; }

    // Entries carry nothing on disk; both only report the stream state.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;

private:
    bool reallyVisible;
    OctreeNode* node;  // not owned
    OctreeVisible* prev;
    OctreeVisible* next;
};
