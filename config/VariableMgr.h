// The process-wide registry of settings, read from and written to a text file.
#pragma once

#include "config/Variable.h"

class VariableMgr {
public:
    // Stand-alone registries are for tools and tests; the program uses getHandle().
    VariableMgr();
    ~VariableMgr();
    VariableMgr(const VariableMgr&) = delete;
    VariableMgr& operator=(const VariableMgr&) = delete;

    static VariableMgr* getHandle();

    // False when the file cannot be opened, has the wrong first line or a bad
    // record, and also after the last record when the file ends with a newline:
    // records read before the stop stay registered either way.
    bool load(const char* file);
    // Writes a form load does not read back: the header and notice run together
    // and every record is followed by an empty line.
    bool save(const char* file);

    // Replaces the value of an existing name (its flag kept), else adds a copy at the head.
    bool add(const Variable& variable);
    bool remove(const char* name);
    Variable* find(const char* name);
    const Variable* find(const char* name) const;
    unsigned getCount() const { return count; }

    // Deletes every variable.
    void shutdown();

    static const char* const IDENTIFICATION;
    static const char* const NOTICE;

private:
    void push(Variable* variable);

    unsigned count;
    Variable* first;
};
