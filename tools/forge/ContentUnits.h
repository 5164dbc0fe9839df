// The forge's table of content units: one per scene, and one for what several scenes share.
#pragma once

#include "ContentUnit.h"

#include <memory>
#include <vector>

class ContentUnits {
public:
    // Every unit, in the order the forge runs them.
    static std::vector<std::unique_ptr<ContentUnit>> all();
    // The unit of that name, or null.
    static std::unique_ptr<ContentUnit> find(const std::string& name);
};
