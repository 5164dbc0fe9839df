// Reports one pending OpenGL error on standard output with a readable text.
#pragma once

// True when an error was pending (and printed), false when GL had none.
bool GLF_checkError(const char* where);
