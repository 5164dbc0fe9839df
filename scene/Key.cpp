// Key: a TCB with the next-key link.
#include "scene/Key.h"

Key::Key() : nextKey(nullptr) {}

Key::~Key() {}

void Key::setTCB(const TCB& tcb)
{
    TCB::operator=(tcb);
}
