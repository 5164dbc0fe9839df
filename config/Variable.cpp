// Variable: text storage, conversions and the one-line record format.
#include "config/Variable.h"

#include <strings.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Longest name or value a record may carry, terminator included.
const int FIELD_SIZE = 128;

char* duplicate(const char* text)
{
    if (!text)
        return nullptr;
    size_t size = std::strlen(text) + 1;
    char* copy = new char[size];
    std::memcpy(copy, text, size);
    return copy;
}

// Copies first, then frees, so that passing the current text is safe.
void replace(char*& field, const char* text)
{
    char* copy = duplicate(text);
    delete[] field;
    field = copy;
}

}  // namespace

Variable::Variable() : name(nullptr), value(nullptr), runtimeFlag(false), next(nullptr) {}

Variable::Variable(const char* n, const char* v, bool runtime) : Variable()
{
    assign(n, v, runtime);
}
Variable::Variable(const char* n, int v, bool runtime) : Variable()
{
    assign(n, v, runtime);
}
Variable::Variable(const char* n, float v, bool runtime) : Variable()
{
    assign(n, v, runtime);
}
Variable::Variable(const char* n, double v, bool runtime) : Variable()
{
    assign(n, v, runtime);
}
Variable::Variable(const char* n, bool v, bool runtime) : Variable()
{
    assign(n, v, runtime);
}

Variable::Variable(const Variable& other) : Variable()
{
    *this = other;
}

Variable::~Variable()
{
    delete[] name;
    delete[] value;
}

Variable& Variable::operator=(const Variable& other)
{
    if (this == &other)
        return *this;
    setName(other.name);
    setString(other.value);
    runtimeFlag = other.runtimeFlag;
    return *this;
}

void Variable::assign(const char* n, const char* v, bool runtime)
{
    setName(n);
    setString(v);
    runtimeFlag = runtime;
}

void Variable::assign(const char* n, int v, bool runtime)
{
    setName(n);
    setValue(v);
    runtimeFlag = runtime;
}

void Variable::assign(const char* n, float v, bool runtime)
{
    setName(n);
    setValue(v);
    runtimeFlag = runtime;
}

void Variable::assign(const char* n, double v, bool runtime)
{
    setName(n);
    setValue(v);
    runtimeFlag = runtime;
}

void Variable::assign(const char* n, bool v, bool runtime)
{
    setName(n);
    setBoolean(v);
    runtimeFlag = runtime;
}

void Variable::setName(const char* n)
{
    replace(name, n);
}

void Variable::setString(const char* text)
{
    replace(value, text);
}

void Variable::setValue(int number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%d", number);
    setString(text);
}

void Variable::setValue(float number)
{
    setValue(static_cast<double>(number));
}

void Variable::setValue(double number)
{
    // "%f" of the largest double needs over 300 characters.
    char text[512];
    std::snprintf(text, sizeof text, "%f", number);
    setString(text);
}

void Variable::setBoolean(bool flag)
{
    setString(flag ? "yes" : "no");
}

int Variable::getInteger() const
{
    if (!value)
        return 0;
    return static_cast<int>(std::strtol(value, nullptr, 10));
}

float Variable::getFloat() const
{
    return static_cast<float>(getDouble());
}

double Variable::getDouble() const
{
    if (!value)
        return 0.0;
    return std::strtod(value, nullptr);
}

bool Variable::getBoolean() const
{
    return value && strcasecmp(value, "yes") == 0;
}

bool Variable::operator==(const char* other) const
{
    return name && other && std::strcmp(name, other) == 0;
}

bool Variable::load(std::istream& in)
{
    // The name runs to the first space, newlines included: a blank line in
    // front of a record ends up inside its name.
    char field[FIELD_SIZE];
    in.getline(field, FIELD_SIZE, ' ');
    if (in.fail())
        return false;
    setName(field);

    char equals = 0;
    in >> equals;
    if (in.fail() || equals != '=')
        return false;
    in.ignore(1);

    // The value is the rest of the line as it stands: further leading blanks,
    // trailing blanks and a carriage return all stay part of it.
    in.getline(field, FIELD_SIZE);
    if (in.fail())
        return false;
    setString(field);
    runtimeFlag = false;
    return true;
}

bool Variable::save(std::ostream& out)
{
    out << (name ? name : "") << " = " << (value ? value : "") << '\n';
    return !out.fail();
}
