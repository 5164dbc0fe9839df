// The reader's chunk walk on damage it has to name: bad indices, trailing bytes, absurd counts, deep trees.
#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "EngineCheck.h"
#include "ProgramRun.h"
#include "scene/FaceArray.h"
#include "scene/Octree.h"
#include "scene/Terrain.h"
#include "scene/VertexArray.h"
#include "scene/object/Chunk.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// What the walk refuses the bytes for; empty when it accepts them.
std::string walkError(const std::string& bytes, ChunkFacts* facts = nullptr)
{
    ChunkFacts ignored;
    std::istringstream in(bytes);
    std::ostringstream printout;
    ChunkReader reader(in, printout);
    const bool ok = ChunkWalker(reader, facts ? *facts : ignored).walk();
    return ok ? std::string() : reader.error().empty() ? std::string("refused") : reader.error();
}

std::string int32(int32_t value)
{
    std::ostringstream out;
    Chunk::writeInt(out, value);
    return out.str();
}

// An octree file of two faces over three vertices (the first face's last index given) whose one filled leaf holds face 0.
std::string octreeFile(uint32_t last)
{
    VertexArray* vertices = new VertexArray;
    vertices->create(3);
    for (int i = 0; i < 3; ++i)
        vertices->addVertex(Vector3(float(i), float(i * i), 0));
    FaceArray* faces = new FaceArray;
    faces->create(2);
    Face face;
    face.create(3);
    face.indices[0] = 0;
    face.indices[1] = 1;
    face.indices[2] = last;
    faces->addFace(face);
    face.indices[2] = 2;
    faces->addFace(face);
    OctreeNode* root = new OctreeNode;
    root->setLimits(BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)));
    root->createChildren();
    root->getChild(3)->createFaceIndices(1);
    root->getChild(3)->setFaceIndex(0, 0);
    Octree tree;
    tree.create(vertices, faces, root);
    std::ostringstream out;
    MaterialMgr::getHandle()->save(out);
    tree.save(out);
    return out.str();
}

// A chain of nodes, each with eight children of which the first splits again.
std::string nodeChain(int levels)
{
    std::ostringstream out;
    Chunk::writeTag(out, "OCTN");
    Chunk::writeShort(out, levels > 0 ? OctreeNode::HAS_CHILDREN : 0);
    BoundingBox().save(out);
    for (int child = 0; levels > 0 && child < OctreeNode::NUM_CHILDREN; ++child)
        out << nodeChain(child == 0 ? levels - 1 : 0);
    return out.str();
}

// The materials and arrays of an empty octree file, before its nodes.
std::string octreeHead()
{
    std::ostringstream head;
    MaterialMgr::getHandle()->save(head);
    head << "OCTT"
         << "VARR" << int32(0) << "FARR" << int32(0);
    return head.str();
}

// A 3 x 2 terrain named "T", with the bytes after its header replaced by tail when given.
std::string terrainFile(const std::string& tail = std::string())
{
    Terrain terrain("T");
    terrain.create(3, 2, Vector3(1, 2, 3), 0.5f, 2.0f, 0.25f);
    terrain.setHeight(2, 1, -7.5f);
    std::ostringstream out;
    terrain.save(out);
    const std::string whole = out.str();
    // Tag, name record, two counts and six floats come before the heights.
    const size_t header = 4 + 3 + 8 + 24;
    return tail.empty() ? whole : whole.substr(0, header) + tail;
}

}  // namespace

class ChunkWalk : public ::testing::Test {
protected:
    void TearDown() override { EngineCheck::clearRegistries(); }
};

TEST_F(ChunkWalk, BadIndicesTrailingBytesAndAbsurdCountsAreNamedWithTheirPlace)
{
    EXPECT_EQ(walkError(octreeFile(7)), "OCTT > FARR: face 0 names vertex 7 of 3");
    EXPECT_EQ(walkError(octreeHead() + nodeChain(0)), "");
    EXPECT_NE(walkError(octreeHead() + nodeChain(0) + "xy").find("2 bytes follow the last chunk"), std::string::npos);
    EXPECT_NE(
        walkError("MMGR" + int32(0x7fffffff) + std::string(200, '\0')).find("material count 2147483647 needs at least"),
        std::string::npos);
    EXPECT_EQ(walkError("CMGR" + int32(-1)), "CMGR: camera count -1 is negative");
    EXPECT_EQ(walkError("LMGR" + int32(1) + "XLIT" + std::string(80, '\0')), "LMGR: a light chunk cannot be XLIT");
    // The deepest tree the engine loads passes; one level more is refused.
    EXPECT_EQ(walkError(octreeHead() + nodeChain(OctreeNode::MAX_LOAD_DEPTH)), "");
    EXPECT_NE(walkError(octreeHead() + nodeChain(OctreeNode::MAX_LOAD_DEPTH + 1)).find("deeper than 48 levels"),
              std::string::npos);
}

TEST_F(ChunkWalk, AnOctreeFaceInNoLeafIsRefusedByTheWalkAndTheEngineCheck)
{
    const std::string bytes = octreeFile(2);
    ChunkFacts facts;
    EXPECT_NE(walkError(bytes, &facts).find("1 of 2 faces lie in no leaf"), std::string::npos);
    EXPECT_EQ(facts.kind, ChunkFacts::OCTREE_FILE);
    ScratchDir dir("octree");
    writeBytes(dir.file("half.oct"), std::vector<unsigned char>(bytes.begin(), bytes.end()));
    std::ostringstream printout;
    EngineCheck engine(printout);
    EXPECT_FALSE(engine.checkChunks(dir.file("half.oct"), facts));
    EXPECT_EQ(engine.error(), "1 faces lie in no leaf of the loaded tree");
}

TEST_F(ChunkWalk, TerrainGridsArePrintedAndTheirBadSizesSpacingsAndHeightsNamed)
{
    ChunkFacts facts;
    std::istringstream in(terrainFile());
    std::ostringstream printout;
    ChunkReader reader(in, printout);
    ASSERT_TRUE(ChunkWalker(reader, facts).walk()) << reader.error();
    EXPECT_EQ(facts.kind, ChunkFacts::TERRAIN);
    EXPECT_NE(printout.str().find("TERA \"T\" grid 3 x 2"), std::string::npos) << printout.str();
    EXPECT_NE(printout.str().find("heights from -7.5 to 0"), std::string::npos) << printout.str();

    const std::string good = terrainFile();
    std::string wide = good;
    wide.replace(7, 4, int32(Terrain::MAX_SIDE + 1));
    EXPECT_NE(walkError(wide).find("each side must be 2 to"), std::string::npos);
    std::string flat = good;
    flat.replace(27, 4, std::string(4, '\0'));
    EXPECT_EQ(walkError(flat), "TERA: the grid spacing must be finite and above 0");
    EXPECT_EQ(walkError(terrainFile(std::string(20, '\0') + std::string("\x00\x00\xc0\x7f", 4))),
              "TERA: the height at column 2, row 1 is not a finite number");
    EXPECT_NE(walkError(good.substr(0, good.size() - 1)).find("heights cut short"), std::string::npos);
}
