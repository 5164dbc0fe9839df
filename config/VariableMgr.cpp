// VariableMgr: the settings list, its file reader and writer.
#include "config/VariableMgr.h"

#include <fcntl.h>
#include <unistd.h>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

const char* const VariableMgr::IDENTIFICATION = "Settings Registry v0.1";
const char* const VariableMgr::NOTICE = "(c) Quorvex Co - settings for Velmora Deep";

namespace {

// Room for the identification line and its terminator; anything longer fails the read.
const int IDENTIFICATION_SIZE = 23;
// The notice line is skipped unread, up to this many characters and its newline.
const int NOTICE_SIZE = 80;

// Built before main so that every static user finds it ready.
VariableMgr* const startUp = VariableMgr::getHandle();

bool writeAll(int fd, const std::string& text)
{
    size_t done = 0;
    while (done < text.size()) {
        ssize_t written = ::write(fd, text.data() + done, text.size() - done);
        if (written <= 0)
            return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

}  // namespace

VariableMgr::VariableMgr() : count(0), first(nullptr) {}

VariableMgr::~VariableMgr()
{
    shutdown();
}

VariableMgr* VariableMgr::getHandle()
{
    static VariableMgr instance;
    (void)startUp;
    return &instance;
}

void VariableMgr::shutdown()
{
    while (first) {
        Variable* next = first->getNext();
        delete first;
        first = next;
    }
    count = 0;
}

void VariableMgr::push(Variable* variable)
{
    variable->setNext(first);
    first = variable;
    ++count;
}

bool VariableMgr::load(const char* file)
{
    if (!file)
        return false;
    std::ifstream in(file);
    if (!in.is_open())
        return false;

    char header[IDENTIFICATION_SIZE];
    in.getline(header, IDENTIFICATION_SIZE);
    if (in.fail() || std::strcmp(header, IDENTIFICATION) != 0)
        return false;
    in.ignore(NOTICE_SIZE + 1, '\n');

    // No end check after a record's newline: a final newline costs one failed
    // attempt, so such a file reports false after loading everything.
    while (!in.eof()) {
        Variable* variable = new Variable();
        if (!variable->load(in)) {
            delete variable;
            return false;
        }
        push(variable);
        if (in.fail())
            break;
    }
    return true;
}

bool VariableMgr::save(const char* file)
{
    if (!file)
        return false;
    std::ostringstream text;
    text << IDENTIFICATION << NOTICE;
    for (Variable* v = first; v; v = v->getNext()) {
        if (!v->save(text))
            return false;
        text << '\n';
    }
    int fd = ::open(file, O_WRONLY | O_CREAT | O_TRUNC, 0664);
    if (fd < 0)
        return false;
    bool written = writeAll(fd, text.str());
    bool closed = ::close(fd) == 0;
    return written && closed;
}

bool VariableMgr::add(const Variable& variable)
{
    Variable* existing = find(variable.getName());
    if (existing) {
        existing->setString(variable.getString());
        return true;
    }
    push(new Variable(variable));
    return true;
}

bool VariableMgr::remove(const char* name)
{
    Variable* previous = nullptr;
    for (Variable* v = first; v; previous = v, v = v->getNext()) {
        if (!(*v == name))
            continue;
        if (previous)
            previous->setNext(v->getNext());
        else
            first = v->getNext();
        delete v;
        --count;
        return true;
    }
    return false;
}

Variable* VariableMgr::find(const char* name)
{
    for (Variable* v = first; v; v = v->getNext()) {
        if (*v == name)
            return v;
    }
    return nullptr;
}

const Variable* VariableMgr::find(const char* name) const
{
    return const_cast<VariableMgr*>(this)->find(name);
}
