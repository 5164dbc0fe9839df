// Importer for the plain, headerless mesh layout (counts and raw records, no chunks).
#pragma once

class Mesh;

// A new unnamed mesh with its limits computed, or null when the file cannot be read.
Mesh* loadMeshMSH(const char* file);
