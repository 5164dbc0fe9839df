// The sailing ship: a lofted hull, deck, three masts with square sails, bowsprit, jib and flag.
#pragma once

#include "MeshBuilder.h"

class ShipMesh {
public:
    // Material indices used by build(), in the order of materialNames.
    enum { Hull, Deck, Sail, Mast, Flag, Trim, MaterialCount };
    static const char* const materialNames[MaterialCount];

    // The ship lies with its bow towards +z, masts up +y, waterline at y = 0, about six units long.
    void build(MeshBuilder& mesh) const;

    // Hull shape along the length, t = 0 at the stern and 1 at the bow.
    static double halfBeam(double t);
    static double deckHeight(double t);
    static double keelDepth(double t);

private:
    void hull(MeshBuilder& mesh) const;
    void rigging(MeshBuilder& mesh) const;
    void mast(MeshBuilder& mesh, double z, double height, double spread) const;
    // Half width of the hull's section at fraction s from keel (0) to gunwale (1).
    static double sectionWidth(double s);
};
