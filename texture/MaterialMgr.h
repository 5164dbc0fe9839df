// The process-wide material registry, found by name and stored as an MMGR chunk.
#pragma once

#include <istream>
#include <ostream>

class Material;

class MaterialMgr {
public:
    static MaterialMgr* getHandle();
    ~MaterialMgr();
    MaterialMgr(const MaterialMgr&) = delete;
    MaterialMgr& operator=(const MaterialMgr&) = delete;

    bool add(Material* m);
    bool remove(const char* name);
    Material* find(const char* name);
    const Material* find(const char* name) const;

    void initiate();
    void shutdown();

    bool load(std::istream& in);
    bool save(std::ostream& out);
    bool load(const char* file);
    bool save(const char* file);

    // Materials of the last load (or added since); older ones stay findable.
    int getCount() const { return count; }

private:
    MaterialMgr();

    struct Node {
        Material* material;
        Node* next;
    };

    int count;
    Node* head;
};
