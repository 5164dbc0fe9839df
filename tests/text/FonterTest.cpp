// The font front end: the six FTGL styles, the load guards and the face size.
#include "text/Fonter.h"

#include "support/GLContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

namespace {

const char* const FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

class FonterTest : public GLTest {};

}  // namespace

TEST_F(FonterTest, StylesOneToSixLoadOthersAreRefusedAndPolygonTextDrawsWhereTheCallerPlacesIt)
{
    for (int kind = 0; kind <= 7; ++kind) {
        Fonter font;
        bool known = kind >= Fonter::BITMAP && kind <= Fonter::TEXTURE;
        ASSERT_EQ(known, font.loadTTF(FONT, static_cast<Fonter::Type>(kind), 24.0f, 3.0f)) << "style " << kind;
        EXPECT_EQ(known ? kind : Fonter::NONE, font.getType());
        if (known) {
            EXPECT_GT(font.getAdvance(L"Velmora"), font.getAdvance("Vel")) << "style " << kind;
        }
    }
    Fonter font;
    EXPECT_FALSE(font.loadTTF(nullptr, Fonter::POLYGON, 12.0f, 0.0f));
    EXPECT_FALSE(font.loadTTF(VELMORA_SOURCE_DIR "/velmora.cfg", Fonter::POLYGON, 12.0f, 0.0f));
    EXPECT_FALSE(font.isLoaded());
    // Whole points, truncated; the first font stays when a second load is refused.
    ASSERT_TRUE(font.loadTTF(FONT, Fonter::PIXMAP, 17.9f, 0.0f));
    EXPECT_EQ(font.getFaceSize(), 17u);
    EXPECT_FALSE(font.loadTTF(FONT, Fonter::OUTLINE, 40.0f, 0.0f));
    EXPECT_EQ(font.getType(), Fonter::PIXMAP);
    Fonter polygon;
    ASSERT_TRUE(polygon.loadTTF(FONT, Fonter::POLYGON, 100.0f, 0.0f));
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, GLContext::width(), 0, GLContext::height(), -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glColor3f(1.0f, 1.0f, 1.0f);
    glTranslatef(10.0f, 10.0f, 0.0f);
    polygon.draw(L"\u2588");
    unsigned char inside[4], outside[4];
    GLContext::readPixel(30, 40, inside);
    GLContext::readPixel(5, 5, outside);
    EXPECT_EQ(inside[0], 255);
    EXPECT_EQ(outside[0], 0);
}
