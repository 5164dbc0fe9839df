// Materials: CMAT/TMAT/MMAT/MMGR bytes and round trips, the 16-bit flags, registry counts, bad chunks.
#include "TestImages.h"

#include "texture/MaterialMgr.h"
#include "texture/MulTextureMaterial.h"
#include "texture/TextureMgr.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

std::string bitsOf(const Color& c)
{
    return std::string(reinterpret_cast<const char*>(&c.r), 4 * sizeof(float));
}

// Values outside 0..1 and awkward fractions must come back unchanged.
void fill(Material& m)
{
    m.setFlags(0x1234abcd);
    m.setBlendMode(7);
    Color odd;
    odd.assign(0.1f, 0.5f, 0.7f, 1e-30f);
    odd.g = 2.5f;
    odd.b = -0.0f;
    m.setAmbient(odd);
    m.setSpecular(Color(1.0f / 3.0f, 0.0f, 0.7f, 1.0f));
    m.setShininess(12.625f);
}

void expectSameFields(const Material& a, const Material& b)
{
    EXPECT_STREQ(a.getName(), b.getName());
    EXPECT_EQ(a.getBlendMode(), b.getBlendMode());
    for (auto get : {&Material::getAmbient, &Material::getDiffuse, &Material::getSpecular, &Material::getEmission})
        EXPECT_EQ(bitsOf((a.*get)()), bitsOf((b.*get)()));
    EXPECT_EQ(a.getShininess(), b.getShininess());
    EXPECT_EQ(0x1000abcdul, b.getFlags());
}

class Materials : public ::testing::Test {
protected:
    void SetUp() override { mgr->shutdown(); }
    void TearDown() override { mgr->shutdown(); }

    // A cached texture the texture references can resolve to.
    static Texture* cachedTexture(const char* name, int format)
    {
        return TextureMgr::getHandle()->loadTexture(ctxFile(name, format).c_str(), format);
    }

    MaterialMgr* mgr = MaterialMgr::getHandle();
};

}  // namespace

TEST_F(Materials, CmatBytesAreTagNameLowFlagsModeColoursShininess)
{
    Material m("Sand4");
    m.setFlags(0x20000041);
    m.setBlendMode(6);
    std::string expected = "CMAT" + bytesOf({5, 0}) + "Sand4" + bytesOf({0x41, 0x00, 6, 0, 0, 0});
    for (const Color& c : {m.getAmbient(), m.getDiffuse(), m.getSpecular(), m.getEmission()})
        expected += bitsOf(c);
    float shininess = m.getShininess();
    expected += std::string(reinterpret_cast<const char*>(&shininess), 4);
    EXPECT_EQ(expected, saved(m));
}

TEST_F(Materials, CmatRoundTripKeepsEveryFieldButTheFlagsHighHalf)
{
    Material m("Ship");
    fill(m);
    Material back;
    back.setFlags(0xffff0000);
    ASSERT_TRUE(loads(back, saved(m)));
    // The high half is whatever the object had before loading; the depth-write bit is never persisted.
    EXPECT_EQ(0xffffabcdul, back.getFlags());
    Material fresh;
    ASSERT_TRUE(loads(fresh, saved(m)));
    expectSameFields(m, fresh);
}

TEST_F(Materials, UnwritableNameIsReportedYetTheSaveSucceeds)
{
    Material m(std::string(40000, 'n').c_str());
    testing::internal::CaptureStdout();
    EXPECT_EQ("CMAT", saved(m));
    EXPECT_EQ("COULDN'T SAVE NamedObject\n", testing::internal::GetCapturedStdout());
}

TEST_F(Materials, TmatAndMmatRoundTripFindTheirTexturesThroughTheCache)
{
    TextureMaterial bare("bare");
    // TMAT, the CMAT chunk with the name "bare" (84 bytes), then an empty texture name and no format.
    EXPECT_EQ(4u + 84u + 2u, saved(bare).size());
    MulTextureMaterial m("UWTunnel");
    fill(m);
    m.setTexture(cachedTexture("first.ctx", 7));
    m.setTexture2(cachedTexture("second.ctx", 8));
    m.setTexBlendMode(1);
    std::string bytes = saved(m);
    EXPECT_EQ("MMATTMATCMAT", bytes.substr(0, 12));
    MulTextureMaterial back;
    ASSERT_TRUE(loads(back, bytes));
    expectSameFields(m, back);
    EXPECT_EQ(m.getTexture(), back.getTexture());
    EXPECT_EQ(m.getTexture2(), back.getTexture2());
    EXPECT_EQ(1, back.getTexBlendMode());
    // A texture that can no longer be found fails the load.
    TextureMgr::getHandle()->removeTexture(scratchPath("first.ctx").c_str());
    std::remove(scratchPath("first.ctx").c_str());
    EXPECT_FALSE(loads(back, bytes));
    TextureMgr::getHandle()->removeTexture(scratchPath("second.ctx").c_str());
}

TEST_F(Materials, CutWrongOrAbsurdChunksFail)
{
    MulTextureMaterial m("cut");
    fill(m);
    std::string whole = saved(m);
    for (size_t length = 0; length < whole.size(); ++length) {
        MulTextureMaterial back;
        EXPECT_FALSE(loads(back, whole.substr(0, length))) << "cut at " << length;
    }
    TextureMaterial t;
    EXPECT_FALSE(loads(t, saved(Material("m"))));
    std::string absurd = saved(TextureMaterial("m"));
    absurd[absurd.size() - 2] = '\xff';
    absurd[absurd.size() - 1] = '\x7f';
    EXPECT_FALSE(loads(t, absurd));
}

TEST_F(Materials, RegistryRoundTripOfMixedChildrenNewestFirst)
{
    Material* plain = new Material("Plain");
    fill(*plain);
    mgr->add(plain);
    mgr->add(new TextureMaterial("Textured"));
    mgr->add(new MulTextureMaterial("Multi"));
    EXPECT_EQ(nullptr, mgr->find("plain"));
    std::string bytes = saved(*mgr);
    EXPECT_EQ("MMGR" + bytesOf({3, 0, 0, 0}) + "MMAT", bytes.substr(0, 12));
    mgr->shutdown();
    ASSERT_TRUE(loads(*mgr, bytes));
    EXPECT_EQ(3, mgr->getCount());
    EXPECT_NE(nullptr, dynamic_cast<MulTextureMaterial*>(mgr->find("Multi")));
    TextureMaterial* textured = dynamic_cast<TextureMaterial*>(mgr->find("Textured"));
    ASSERT_NE(nullptr, textured);
    EXPECT_EQ(nullptr, dynamic_cast<MulTextureMaterial*>(textured));
    ASSERT_NE(nullptr, mgr->find("Plain"));
    Material reference("Plain");
    fill(reference);
    expectSameFields(reference, *mgr->find("Plain"));
    // A second load counts only its own materials; the earlier ones stay findable.
    ASSERT_TRUE(loads(*mgr, "MMGR" + bytesOf({0, 0, 0, 0})));
    EXPECT_EQ(0, mgr->getCount());
    EXPECT_NE(nullptr, mgr->find("Multi"));
}

TEST_F(Materials, BadRegistriesFail)
{
    mgr->add(new Material("One"));
    mgr->add(new TextureMaterial("Two"));
    std::string whole = saved(*mgr);
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(loads(*mgr, whole.substr(0, length))) << "cut at " << length;
    EXPECT_FALSE(loads(*mgr, "MMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + whole.substr(8)));
    EXPECT_FALSE(loads(*mgr, "MMGX" + whole.substr(4)));
    EXPECT_FALSE(mgr->load(scratchPath("no-such.mat").c_str()));
    std::ostringstream broken;
    broken.setstate(std::ios::badbit);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(mgr->save(broken));
    EXPECT_EQ("COULDN'T SAVE MATERIAL\n", testing::internal::GetCapturedStdout());
}

TEST_F(Materials, ACountPastTheEndKeepsTheMaterialsReadBeforeTheCut)
{
    EXPECT_FALSE(loads(*mgr, "MMGR" + bytesOf({0xff, 0xff, 0xff, 0x7f}) + saved(Material("Early"))));
    EXPECT_NE(nullptr, mgr->find("Early"));
}
