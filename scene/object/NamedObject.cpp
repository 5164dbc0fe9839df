// Names are written as a signed 16-bit length and the bytes, no terminator.
#include "scene/object/NamedObject.h"

#include "scene/object/Chunk.h"

#include <cstring>

NamedObject::NamedObject() : name(nullptr) {}

NamedObject::NamedObject(const char* newName) : name(nullptr)
{
    setName(newName);
}

NamedObject::NamedObject(const NamedObject&) : name(nullptr) {}

NamedObject& NamedObject::operator=(const NamedObject&)
{
    return *this;
}

NamedObject::~NamedObject()
{
    delete[] name;
}

void NamedObject::setName(const char* newName)
{
    if (!newName)
        return;
    size_t length = std::strlen(newName);
    char* copy = new char[length + 1];
    std::memcpy(copy, newName, length + 1);
    delete[] name;
    name = copy;
}

bool NamedObject::load(std::istream& in)
{
    short length = 0;
    if (!Chunk::readShort(in, length))
        return false;
    if (length <= 0)
        return Chunk::good(in);
    if (!Chunk::fits(in, length, 1))
        return false;
    char* text = new char[length + 1];
    in.read(text, length);
    text[length] = '\0';
    if (!Chunk::good(in)) {
        delete[] text;
        return false;
    }
    delete[] name;
    name = text;
    return true;
}

bool NamedObject::save(std::ostream& out)
{
    if (!name)
        return Chunk::writeShort(out, 0);
    size_t length = std::strlen(name);
    // The length field is signed 16-bit: longer names cannot be represented.
    if (length > 32767)
        return false;
    Chunk::writeShort(out, static_cast<short>(length));
    out.write(name, static_cast<std::streamsize>(length));
    return Chunk::good(out);
}

bool operator==(const char* text, const NamedObject& object)
{
    const char* name = object.getName();
    if (!text || !name)
        return false;
    return std::strcmp(text, name) == 0;
}

bool operator==(const NamedObject& object, const char* text)
{
    return text == object;
}
