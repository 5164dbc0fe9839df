// Base of every persistent engine object: an owned name plus chunk load/save.
#pragma once

#include <istream>
#include <ostream>

class NamedObject {
public:
    NamedObject();
    explicit NamedObject(const char* name);
    // Copies never share the name string: a copy starts unnamed, an assignment keeps the target's name.
    NamedObject(const NamedObject& other);
    NamedObject& operator=(const NamedObject& other);
    virtual ~NamedObject();

    void setName(const char* name);
    const char* getName() const { return name; }

    virtual bool load(std::istream& in);
    virtual bool save(std::ostream& out);

private:
    char* name;
};

bool operator==(const char* text, const NamedObject& object);
bool operator==(const NamedObject& object, const char* text);
