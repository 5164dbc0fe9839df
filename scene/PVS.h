// A node's potentially visible set: an owned list of OctreeVisible entries, newest first.
#pragma once

#include <istream>
#include <ostream>

class OctreeNode;
class OctreeVisible;

class PVS {
public:
    PVS() : first(nullptr) {}
    ~PVS();
    PVS(const PVS&) = delete;
    PVS& operator=(const PVS&) = delete;

    // A fresh entry (not really visible, no node) at the front.
    OctreeVisible* add();
    void clear();
    OctreeVisible* findNode(const OctreeNode* node) const;
    // Unlinks and deletes the entry; an entry of another set, or null, is left alone.
    void destroy(OctreeVisible* entry);
    // The entry naming that node, if there is one.
    void destroy(const OctreeNode* node);

    OctreeVisible* getFirst() const { return first; }
    OctreeVisible* getNext(const OctreeVisible* entry) const;
    bool isEmpty() const { return first == nullptr; }

    // Nothing of a set is stored; both only report the stream state.
    bool load(std::istream& in);
    bool save(std::ostream& out) const;

private:
    bool contains(const OctreeVisible* entry) const;

    OctreeVisible* first;
};
