// A named setting whose value is always kept as text, with typed accessors.
#pragma once

#include <istream>
#include <ostream>

class Variable {
public:
    Variable();
    Variable(const char* name, const char* value, bool runtime);
    Variable(const char* name, int value, bool runtime);
    Variable(const char* name, float value, bool runtime);
    Variable(const char* name, double value, bool runtime);
    Variable(const char* name, bool value, bool runtime);
    // Copies name, value and flag; the copy is not linked into any list.
    Variable(const Variable& other);
    ~Variable();

    Variable& operator=(const Variable& other);

    void assign(const char* name, const char* value, bool runtime);
    void assign(const char* name, int value, bool runtime);
    void assign(const char* name, float value, bool runtime);
    void assign(const char* name, double value, bool runtime);
    void assign(const char* name, bool value, bool runtime);

    void setName(const char* name);
    const char* getName() const { return name; }

    // Every setter replaces the text with a fresh copy.
    void setString(const char* text);
    const char* getString() const { return value; }
    void setValue(int number);
    void setValue(float number);
    void setValue(double number);
    void setBoolean(bool flag);

    // Parsed on every call; an unset value reads as 0 / false.
    int getInteger() const;
    float getFloat() const;
    double getDouble() const;
    // Only "yes", in any case, is true.
    bool getBoolean() const;

    void setRuntimeFlag(bool flag) { runtimeFlag = flag; }
    bool getRuntimeFlag() const { return runtimeFlag; }

    // Exact, case-sensitive comparison of the name.
    bool operator==(const char* other) const;

    // One "name = value" line; see the registry for the file around it.
    bool load(std::istream& in);
    bool save(std::ostream& out);

    Variable* getNext() const { return next; }
    void setNext(Variable* variable) { next = variable; }

private:
    char* name;
    char* value;
    bool runtimeFlag;
    Variable* next;  // not owned: the registry owns the list
};
