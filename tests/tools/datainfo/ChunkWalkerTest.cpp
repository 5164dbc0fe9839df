// The reader's chunk walk on files the engine writes, and on the damage it has to name.
#include "ChunkFacts.h"
#include "ChunkReader.h"
#include "ChunkWalker.h"
#include "EngineCheck.h"
#include "ProgramRun.h"
#include "scene/CameraAnimation.h"
#include "scene/Mesh.h"
#include "scene/MeshAnimation.h"
#include "scene/Octree.h"
#include "scene/object/Chunk.h"
#include "texture/Material.h"
#include "texture/MaterialMgr.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

struct Walked {
    bool ok = false;
    ChunkFacts facts;
    std::string printout;
    std::string error;
};

Walked walkBytes(const std::string& bytes)
{
    Walked result;
    std::istringstream in(bytes);
    std::ostringstream printout;
    ChunkReader reader(in, printout);
    ChunkWalker walker(reader, result.facts);
    result.ok = walker.walk();
    result.printout = printout.str();
    result.error = reader.error();
    return result;
}

std::string int32(int32_t value)
{
    std::ostringstream out;
    Chunk::writeInt(out, value);
    return out.str();
}

// A one-triangle mesh file with the material "Red"; last is the third index.
std::string meshFile(uint32_t last)
{
    Material* red = new Material("Red");
    MaterialMgr::getHandle()->add(red);
    VertexArray* vertices = new VertexArray;
    vertices->create(3);
    vertices->addVertex(Vector3(0, 0, 0));
    vertices->addVertex(Vector3(1, 0, 0));
    vertices->addVertex(Vector3(0, 1, 0));
    FaceArray* faces = new FaceArray;
    faces->create(1);
    Face face;
    face.create(3);
    face.indices[0] = 0;
    face.indices[1] = 1;
    face.indices[2] = last;
    face.setMaterial(red);
    faces->addFace(face);
    Mesh mesh;
    mesh.create(vertices, faces);
    std::ostringstream out;
    MaterialMgr::getHandle()->save(out);
    mesh.save(out);
    return out.str();
}

// An octree of two faces whose tree holds only the given children's faces.
std::string octreeFile(bool split, bool secondFaceInALeaf)
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
    face.indices[2] = 2;
    faces->addFace(face);
    faces->addFace(face);
    OctreeNode* root = new OctreeNode;
    root->setLimits(BoundingBox(Vector3(-1, -1, -1), Vector3(1, 1, 1)));
    OctreeNode* leaf = root;
    if (split) {
        root->createChildren();
        leaf = root->getChild(3);
    }
    int count = secondFaceInALeaf ? 2 : 1;
    leaf->createFaceIndices(count);
    for (int i = 0; i < count; ++i)
        leaf->setFaceIndex(i, static_cast<unsigned long>(i));
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
        out << (child == 0 ? nodeChain(levels - 1) : nodeChain(0));
    return out.str();
}

} // namespace

class ChunkWalk : public ::testing::Test {
protected:
    void TearDown() override { EngineCheck::clearRegistries(); }
};

TEST_F(ChunkWalk, AMeshFileShowsItsKindCountsAndMaterialUse)
{
    Walked walked = walkBytes(meshFile(2));
    ASSERT_TRUE(walked.ok) << walked.error;
    EXPECT_EQ(walked.facts.kind, ChunkFacts::MESH_FILE);
    EXPECT_EQ(walked.facts.vertices, 3);
    EXPECT_EQ(walked.facts.faces, 1);
    EXPECT_EQ(walked.facts.materials, std::vector<std::string>{"Red"});
    EXPECT_NE(walked.printout.find("CMAT \"Red\" flags 0x0003 blend 0"), std::string::npos) << walked.printout;
    EXPECT_NE(walked.printout.find("material \"Red\" on 1 faces\n"), std::string::npos) << walked.printout;
}

TEST_F(ChunkWalk, AFaceNamingAVertexPastTheArrayIsNamedWithItsPath)
{
    Walked walked = walkBytes(meshFile(7));
    EXPECT_FALSE(walked.ok);
    EXPECT_EQ(walked.error, "MESH > FARR: face 0 names vertex 7 of 3");
}

TEST_F(ChunkWalk, BytesAfterTheLastChunkAreRefused)
{
    Walked walked = walkBytes(meshFile(2) + "xy");
    EXPECT_FALSE(walked.ok);
    EXPECT_NE(walked.error.find("2 bytes follow the last chunk"), std::string::npos) << walked.error;
}

TEST_F(ChunkWalk, CountsAreCheckedAgainstTheBytesLeftBeforeAnythingIsRead)
{
    Walked huge = walkBytes("MMGR" + int32(0x7fffffff) + std::string(200, '\0'));
    EXPECT_FALSE(huge.ok);
    EXPECT_NE(huge.error.find("material count 2147483647 needs at least"), std::string::npos) << huge.error;
    Walked negative = walkBytes("CMGR" + int32(-1));
    EXPECT_FALSE(negative.ok);
    EXPECT_EQ(negative.error, "CMGR: camera count -1 is negative");
}

TEST_F(ChunkWalk, UnknownChildrenAndTopLevelTagsAreNamed)
{
    Walked light = walkBytes("LMGR" + int32(1) + "XLIT" + std::string(80, '\0'));
    EXPECT_EQ(light.error, "LMGR: a light chunk cannot be XLIT");
    Walked top = walkBytes("MMGR" + int32(0) + "ABCD");
    EXPECT_NE(top.error.find("expected MESH or OCTT after the materials, found ABCD"), std::string::npos) << top.error;
}

TEST_F(ChunkWalk, OctreeStatisticsCountNodesLeavesAndDepth)
{
    Walked walked = walkBytes(octreeFile(true, true));
    ASSERT_TRUE(walked.ok) << walked.error;
    EXPECT_EQ(walked.facts.kind, ChunkFacts::OCTREE_FILE);
    EXPECT_NE(walked.printout.find("OCTN nodes 9, depth 1, leaves 8 (7 empty)"), std::string::npos)
        << walked.printout;
    EXPECT_NE(walked.printout.find("fewest 0, most 2, average 0.25; 2 references to 2 of 2 faces"), std::string::npos)
        << walked.printout;
}

TEST_F(ChunkWalk, AnOctreeFaceInNoLeafIsRefusedByTheWalkAndTheEngineCheck)
{
    std::string bytes = octreeFile(true, false);
    Walked walked = walkBytes(bytes);
    EXPECT_FALSE(walked.ok);
    EXPECT_NE(walked.error.find("1 of 2 faces lie in no leaf"), std::string::npos) << walked.error;

    ScratchDir dir("octree");
    std::string file = dir.file("half.oct");
    writeBytes(file, std::vector<unsigned char>(bytes.begin(), bytes.end()));
    std::ostringstream printout;
    EngineCheck engine(printout);
    EXPECT_FALSE(engine.checkChunks(file, walked.facts));
    EXPECT_EQ(engine.error(), "1 faces lie in no leaf of the loaded tree");
}

TEST_F(ChunkWalk, ATreeDeeperThanTheEngineTakesIsRefused)
{
    std::ostringstream head;
    MaterialMgr::getHandle()->save(head);
    head << "OCTT" << "VARR" << int32(0) << "FARR" << int32(0);
    EXPECT_TRUE(walkBytes(head.str() + nodeChain(OctreeNode::MAX_LOAD_DEPTH)).ok);
    Walked deep = walkBytes(head.str() + nodeChain(OctreeNode::MAX_LOAD_DEPTH + 1));
    EXPECT_FALSE(deep.ok);
    EXPECT_NE(deep.error.find("deeper than 48 levels"), std::string::npos) << deep.error;
}

TEST_F(ChunkWalk, OneTrackMakesAMeshPathAndTwoACameraPath)
{
    MeshAnimation shipPath;
    shipPath.addMeshPos(0, Vector3(0, 0, 0));
    shipPath.addMeshPos(48, Vector3(5, 0, 0));
    std::ostringstream meshOut;
    ASSERT_TRUE(shipPath.save(meshOut));
    Walked mesh = walkBytes(meshOut.str());
    ASSERT_TRUE(mesh.ok) << mesh.error;
    EXPECT_EQ(mesh.facts.kind, ChunkFacts::MESH_ANIMATION);
    EXPECT_NE(mesh.printout.find("key 1 frame 48 (5, 0, 0) tcb (0.1, 0.1, 0) ease (32, 32)"), std::string::npos)
        << mesh.printout;

    CameraAnimation flight;
    flight.addCameraPos(0, Vector3(0, 1, 0));
    flight.addTargetPos(0, Vector3(0, 0, 1));
    std::ostringstream cameraOut;
    ASSERT_TRUE(flight.save(cameraOut));
    Walked camera = walkBytes(cameraOut.str());
    ASSERT_TRUE(camera.ok) << camera.error;
    EXPECT_EQ(camera.facts.kind, ChunkFacts::CAMERA_ANIMATION);
    EXPECT_NE(camera.printout.find("LIN3 target keys 1, flags 2 closed"), std::string::npos) << camera.printout;
}
