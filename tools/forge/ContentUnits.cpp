// The forge's table of content units: a new scene adds its unit here.
#include "ContentUnits.h"

#include "scenes/BlowUpContent.h"
#include "scenes/CityStreetContent.h"
#include "scenes/CockpitContent.h"
#include "scenes/CreditsContent.h"
#include "scenes/FlipperLandContent.h"
#include "scenes/IslandsContent.h"
#include "scenes/LogoContent.h"
#include "scenes/SeaBedContent.h"
#include "scenes/SharedContent.h"
#include "scenes/SpaceCraftContent.h"
#include "scenes/TunnelContent.h"
#include "scenes/TunnelExitContent.h"

std::vector<std::unique_ptr<ContentUnit>> ContentUnits::all()
{
    std::vector<std::unique_ptr<ContentUnit>> units;
    units.emplace_back(new SharedContent());
    units.emplace_back(new CreditsContent());
    units.emplace_back(new IslandsContent());
    units.emplace_back(new LogoContent());
    units.emplace_back(new SeaBedContent());
    units.emplace_back(new TunnelContent());
    units.emplace_back(new TunnelExitContent());
    units.emplace_back(new FlipperLandContent());
    units.emplace_back(new SpaceCraftContent());
    units.emplace_back(new CockpitContent());
    units.emplace_back(new CityStreetContent());
    units.emplace_back(new BlowUpContent());
    return units;
}

std::unique_ptr<ContentUnit> ContentUnits::find(const std::string& name)
{
    for (std::unique_ptr<ContentUnit>& unit : all())
        if (name == unit->name())
            return std::move(unit);
    return nullptr;
}
