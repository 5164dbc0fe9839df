// Materials: CMAT/TMAT/MMAT/MMGR bytes and round trips, the 16-bit flags, registry counts, bad chunks.
#include "TestImages.h"

#include "texture/Material.h"
#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/Texture.h"
#include "texture/TextureLoaderInternal.h"
#include "texture/TextureMaterial.h"
#include "texture/TextureMgr.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

namespace {

uint32_t bitsOf(float f)
{
    uint32_t u;
    std::memcpy(&u, &f, 4);
    return u;
}

void expectSameColor(const Color& a, const Color& b)
{
    EXPECT_EQ(bitsOf(a.r), bitsOf(b.r));
    EXPECT_EQ(bitsOf(a.g), bitsOf(b.g));
    EXPECT_EQ(bitsOf(a.b), bitsOf(b.b));
    EXPECT_EQ(bitsOf(a.a), bitsOf(b.a));
}

Color raw(float r, float g, float b, float a)
{
    Color c;
    c.r = r;
    c.g = g;
    c.b = b;
    c.a = a;
    return c;
}

void fill(Material& m)
{
    m.setFlags(0x1234abcd);
    m.setBlendMode(7);
    // Values outside 0..1 and awkward fractions must come back unchanged.
    m.setAmbient(raw(0.1f, 2.5f, -1.0f, 1e-30f));
    m.setDiffuse(raw(0.3f, 0.7f, 0.11f, 0.5f));
    m.setSpecular(raw(1.0f / 3.0f, 0.0f, -0.0f, 1.0f));
    m.setEmission(raw(0.9f, 0.8f, 0.7f, 0.6f));
    m.setShininess(12.625f);
}

void expectSameFields(const Material& a, const Material& b)
{
    EXPECT_STREQ(a.getName(), b.getName());
    EXPECT_EQ(a.getBlendMode(), b.getBlendMode());
    expectSameColor(a.getAmbient(), b.getAmbient());
    expectSameColor(a.getDiffuse(), b.getDiffuse());
    expectSameColor(a.getSpecular(), b.getSpecular());
    expectSameColor(a.getEmission(), b.getEmission());
    EXPECT_EQ(bitsOf(a.getShininess()), bitsOf(b.getShininess()));
}

std::string bytesOf(std::initializer_list<int> values)
{
    std::string s;
    for (int v : values)
        s.push_back(static_cast<char>(v));
    return s;
}

std::string floatBytes(float f)
{
    uint32_t u = bitsOf(f);
    return bytesOf({int(u & 0xff), int((u >> 8) & 0xff), int((u >> 16) & 0xff), int(u >> 24)});
}

class Materials : public ::testing::Test {
protected:
    void SetUp() override { MaterialMgr::getHandle()->shutdown(); }
    void TearDown() override { MaterialMgr::getHandle()->shutdown(); }

    // A cached CTX1 texture file the texture references can resolve to.
    static std::string textureFile(const char* name, int format)
    {
        Texture t("src", 1, 1, 8, format, new unsigned char[4]{1, 2, 3, 4});
        std::string path = scratchPath(name);
        TextureLoaderInternal writer;
        EXPECT_TRUE(writer.saveTexture(path.c_str(), &t));
        return path;
    }
};

} // namespace

TEST_F(Materials, DefaultsAndSetDefaults)
{
    Material m("m");
    EXPECT_EQ(0x10000003ul, m.getFlags());
    EXPECT_EQ(0, m.getBlendMode());
    EXPECT_EQ(Color(0.2f, 0.2f, 0.2f, 1.0f), m.getAmbient());
    EXPECT_EQ(Color(0.8f, 0.8f, 0.8f, 1.0f), m.getDiffuse());
    EXPECT_EQ(Color(1.0f, 1.0f, 1.0f, 1.0f), m.getSpecular());
    EXPECT_EQ(Color(0.0f, 0.0f, 0.0f, 1.0f), m.getEmission());
    EXPECT_EQ(45.0f, m.getShininess());
    fill(m);
    m.setDefaults();
    EXPECT_EQ(0x10000003ul, m.getFlags());
    EXPECT_EQ(45.0f, m.getShininess());
    EXPECT_STREQ("m", m.getName());
}

TEST_F(Materials, TextureMaterialDefaultsToTheCachedDefaultTexture)
{
    TextureMaterial plain("t");
    EXPECT_EQ(nullptr, plain.getTexture());
    Texture* fallback = new Texture("default");
    TextureMgr::getHandle()->addTexture(fallback);
    plain.setDefaults();
    EXPECT_EQ(fallback, plain.getTexture());
    MulTextureMaterial mul("m");
    mul.setTexture2(fallback);
    mul.setTexBlendMode(2);
    mul.setDefaults();
    EXPECT_EQ(fallback, mul.getTexture());
    EXPECT_EQ(nullptr, mul.getTexture2());
    EXPECT_EQ(0, mul.getTexBlendMode());
    TextureMgr::getHandle()->removeTexture("default");
}

TEST_F(Materials, CmatBytesAreTagNameLowFlagsModeColoursShininess)
{
    Material m("Sand4");
    m.setFlags(0x20000041);
    m.setBlendMode(6);
    std::ostringstream out;
    EXPECT_TRUE(m.save(out));
    std::string expected = "CMAT" + bytesOf({5, 0}) + "Sand4" + bytesOf({0x41, 0x00}) + bytesOf({6, 0, 0, 0});
    for (float f : {0.2f, 0.2f, 0.2f, 1.0f, 0.8f, 0.8f, 0.8f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f,
                    45.0f})
        expected += floatBytes(f);
    EXPECT_EQ(expected, out.str());
}

TEST_F(Materials, CmatRoundTripKeepsEveryFieldButTheFlagsHighHalf)
{
    Material m("Ship");
    fill(m);
    std::stringstream file;
    ASSERT_TRUE(m.save(file));
    Material back;
    ASSERT_TRUE(back.load(file));
    expectSameFields(m, back);
    EXPECT_EQ(0x1000abcdul, back.getFlags());
}

TEST_F(Materials, DepthWriteBitIsNeverPersisted)
{
    Material m("m");
    m.setFlags(0x20000041);
    std::stringstream file;
    ASSERT_TRUE(m.save(file));
    Material back;
    ASSERT_TRUE(back.load(file));
    EXPECT_EQ(0x10000041ul, back.getFlags());
    // The high half is whatever the object had before loading.
    std::stringstream again;
    ASSERT_TRUE(m.save(again));
    Material other;
    other.setFlags(0xffff0000);
    ASSERT_TRUE(other.load(again));
    EXPECT_EQ(0xffff0041ul, other.getFlags());
}

TEST_F(Materials, UnnamedMaterialKeepsItsNameOnLoad)
{
    Material unnamed;
    std::stringstream file;
    ASSERT_TRUE(unnamed.save(file));
    Material named("keep");
    ASSERT_TRUE(named.load(file));
    EXPECT_STREQ("keep", named.getName());
}

TEST_F(Materials, UnwritableNameIsReportedYetTheSaveSucceeds)
{
    Material m(std::string(40000, 'n').c_str());
    std::ostringstream out;
    testing::internal::CaptureStdout();
    bool ok = m.save(out);
    EXPECT_EQ("COULDN'T SAVE NamedObject\n", testing::internal::GetCapturedStdout());
    EXPECT_TRUE(ok);
    EXPECT_EQ("CMAT", out.str());
}

TEST_F(Materials, TmatWithoutTextureHasZeroLengthAndNoFormat)
{
    TextureMaterial m("bare");
    std::ostringstream out;
    ASSERT_TRUE(m.save(out));
    std::string bytes = out.str();
    // TMAT, the CMAT chunk with the name "bare" (84 bytes), then the empty texture name.
    ASSERT_EQ(4u + 84u + 2u, bytes.size());
    EXPECT_EQ("TMAT", bytes.substr(0, 4));
    EXPECT_EQ("CMAT", bytes.substr(4, 4));
    EXPECT_EQ(bytesOf({0, 0}), bytes.substr(bytes.size() - 2));
    std::istringstream in(bytes);
    TextureMaterial back;
    ASSERT_TRUE(back.load(in));
    EXPECT_EQ(nullptr, back.getTexture());
    EXPECT_STREQ("bare", back.getName());
}

TEST_F(Materials, TmatRoundTripFindsItsTextureThroughTheCache)
{
    std::string path = textureFile("tmat.ctx", 6);
    Texture* t = TextureMgr::getHandle()->loadTexture(path.c_str(), 6);
    ASSERT_NE(nullptr, t);
    TextureMaterial m("textured");
    fill(m);
    m.setTexture(t);
    std::stringstream file;
    ASSERT_TRUE(m.save(file));
    std::string bytes = file.str();
    EXPECT_EQ(bytesOf({6, 0, 0, 0}), bytes.substr(bytes.size() - 4));
    EXPECT_EQ(path, bytes.substr(bytes.size() - 4 - path.size(), path.size()));
    TextureMaterial back;
    ASSERT_TRUE(back.load(file));
    expectSameFields(m, back);
    EXPECT_EQ(t, back.getTexture());
    TextureMgr::getHandle()->removeTexture(path.c_str());
}

TEST_F(Materials, MissingTextureFailsTheLoad)
{
    std::string path = textureFile("vanish.ctx", 5);
    Texture* t = TextureMgr::getHandle()->loadTexture(path.c_str(), 5);
    TextureMaterial m("lost");
    m.setTexture(t);
    std::stringstream file;
    ASSERT_TRUE(m.save(file));
    TextureMgr::getHandle()->removeTexture(path.c_str());
    std::remove(path.c_str());
    TextureMaterial back;
    EXPECT_FALSE(back.load(file));
}

TEST_F(Materials, MmatRoundTripWithTwoTextures)
{
    std::string first = textureFile("first.ctx", 7);
    std::string second = textureFile("second.ctx", 8);
    TextureMgr* mgr = TextureMgr::getHandle();
    MulTextureMaterial m("UWTunnel");
    fill(m);
    m.setTexture(mgr->loadTexture(first.c_str(), 7));
    m.setTexture2(mgr->loadTexture(second.c_str(), 8));
    m.setTexBlendMode(1);
    std::stringstream file;
    ASSERT_TRUE(m.save(file));
    EXPECT_EQ("MMATTMATCMAT", file.str().substr(0, 12));
    MulTextureMaterial back;
    ASSERT_TRUE(back.load(file));
    expectSameFields(m, back);
    EXPECT_EQ(m.getTexture(), back.getTexture());
    EXPECT_EQ(m.getTexture2(), back.getTexture2());
    EXPECT_EQ(1, back.getTexBlendMode());
    EXPECT_EQ(0x1000abcdul, back.getFlags());
    mgr->removeTexture(first.c_str());
    mgr->removeTexture(second.c_str());
}

TEST_F(Materials, EveryCutChunkFails)
{
    MulTextureMaterial m("cut");
    fill(m);
    std::ostringstream out;
    ASSERT_TRUE(m.save(out));
    std::string whole = out.str();
    for (size_t length = 0; length < whole.size(); ++length) {
        std::istringstream in(whole.substr(0, length));
        MulTextureMaterial back;
        EXPECT_FALSE(back.load(in)) << "cut at " << length;
    }
}

TEST_F(Materials, WrongTagsFail)
{
    Material m("m");
    std::ostringstream out;
    ASSERT_TRUE(m.save(out));
    std::istringstream asTextured(out.str());
    TextureMaterial t;
    EXPECT_FALSE(t.load(asTextured));
    std::string renamed = out.str();
    renamed[3] = 'X';
    std::istringstream in(renamed);
    Material back;
    EXPECT_FALSE(back.load(in));
}

TEST_F(Materials, AbsurdTextureNameLengthFails)
{
    TextureMaterial m("m");
    std::ostringstream out;
    ASSERT_TRUE(m.save(out));
    std::string bytes = out.str();
    bytes[bytes.size() - 2] = '\xff';
    bytes[bytes.size() - 1] = '\x7f';
    std::istringstream in(bytes);
    TextureMaterial back;
    EXPECT_FALSE(back.load(in));
}

// ---- The registry ----

TEST_F(Materials, RegistryAddsAtTheHeadAndFindsExactNames)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    EXPECT_FALSE(mgr->add(nullptr));
    Material* older = new Material("Same");
    Material* newer = new Material("Same");
    mgr->add(older);
    mgr->add(newer);
    EXPECT_EQ(2, mgr->getCount());
    EXPECT_EQ(newer, mgr->find("Same"));
    EXPECT_EQ(nullptr, mgr->find("same"));
    EXPECT_TRUE(mgr->remove("Same"));
    EXPECT_EQ(older, mgr->find("Same"));
    EXPECT_EQ(1, mgr->getCount());
    EXPECT_FALSE(mgr->remove("nothing"));
    mgr->shutdown();
    EXPECT_EQ(0, mgr->getCount());
    EXPECT_EQ(nullptr, mgr->find("Same"));
}

TEST_F(Materials, RegistryRoundTripOfMixedChildren)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    Material* plain = new Material("Plain");
    fill(*plain);
    mgr->add(plain);
    mgr->add(new TextureMaterial("Textured"));
    mgr->add(new MulTextureMaterial("Multi"));
    std::stringstream file;
    ASSERT_TRUE(mgr->save(file));
    EXPECT_EQ("MMGR" + bytesOf({3, 0, 0, 0}) + "MMAT", file.str().substr(0, 12));
    mgr->shutdown();
    ASSERT_TRUE(mgr->load(file));
    EXPECT_EQ(3, mgr->getCount());
    EXPECT_NE(nullptr, dynamic_cast<MulTextureMaterial*>(mgr->find("Multi")));
    TextureMaterial* textured = dynamic_cast<TextureMaterial*>(mgr->find("Textured"));
    ASSERT_NE(nullptr, textured);
    EXPECT_EQ(nullptr, dynamic_cast<MulTextureMaterial*>(textured));
    Material* back = mgr->find("Plain");
    ASSERT_NE(nullptr, back);
    EXPECT_EQ(nullptr, dynamic_cast<TextureMaterial*>(back));
    Material reference("Plain");
    fill(reference);
    expectSameFields(reference, *back);
}

TEST_F(Materials, SecondLoadCountsOnlyItsOwnMaterials)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    mgr->add(new Material("A"));
    mgr->add(new Material("B"));
    std::stringstream first;
    ASSERT_TRUE(mgr->save(first));
    mgr->shutdown();
    ASSERT_TRUE(mgr->load(first));
    EXPECT_EQ(2, mgr->getCount());
    std::istringstream second("MMGR" + bytesOf({0, 0, 0, 0}));
    ASSERT_TRUE(mgr->load(second));
    EXPECT_EQ(0, mgr->getCount());
    EXPECT_NE(nullptr, mgr->find("A"));
    EXPECT_NE(nullptr, mgr->find("B"));
}

TEST_F(Materials, NegativeCountReadsNothing)
{
    std::istringstream in("MMGR" + bytesOf({0xfe, 0xff, 0xff, 0xff}) + "CMAT");
    EXPECT_TRUE(MaterialMgr::getHandle()->load(in));
    EXPECT_EQ(0, MaterialMgr::getHandle()->getCount());
}

TEST_F(Materials, UnknownChildFailsAndLeavesTheStreamAtItsTag)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    Material good("Kept");
    std::ostringstream child;
    ASSERT_TRUE(good.save(child));
    std::string body = "MMGR" + bytesOf({2, 0, 0, 0}) + child.str() + "DLIT" + std::string(100, '\0');
    std::istringstream in(body);
    EXPECT_FALSE(mgr->load(in));
    EXPECT_EQ(static_cast<std::streamoff>(8 + child.str().size()), static_cast<std::streamoff>(in.tellg()));
    // Children read before the failure stay.
    EXPECT_NE(nullptr, mgr->find("Kept"));
}

TEST_F(Materials, BadRegistriesFail)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    mgr->add(new Material("One"));
    mgr->add(new TextureMaterial("Two"));
    std::ostringstream out;
    ASSERT_TRUE(mgr->save(out));
    std::string whole = out.str();
    for (size_t length = 0; length < whole.size(); ++length) {
        std::istringstream in(whole.substr(0, length));
        EXPECT_FALSE(mgr->load(in)) << "cut at " << length;
    }
    std::istringstream absurd("MMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + whole.substr(8));
    EXPECT_FALSE(mgr->load(absurd));
    std::istringstream wrongTag("MMGX" + whole.substr(4));
    EXPECT_FALSE(mgr->load(wrongTag));
    EXPECT_FALSE(mgr->load(scratchPath("no-such.mat").c_str()));
}

TEST_F(Materials, FailedChildSaveIsReported)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    mgr->add(new Material("m"));
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(mgr->save(out));
    EXPECT_EQ("COULDN'T SAVE MATERIAL\n", testing::internal::GetCapturedStdout());
}

TEST_F(Materials, FileWrappers)
{
    MaterialMgr* mgr = MaterialMgr::getHandle();
    mgr->add(new Material("OnDisk"));
    std::string path = scratchPath("set.mat");
    EXPECT_TRUE(mgr->save(path.c_str()));
    mgr->shutdown();
    EXPECT_TRUE(mgr->load(path.c_str()));
    EXPECT_NE(nullptr, mgr->find("OnDisk"));
    EXPECT_FALSE(mgr->save("/nonexistent-dir/set.mat"));
}
