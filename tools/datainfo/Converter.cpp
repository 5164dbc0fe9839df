// velmora-data convert: any image the engine reads into a CTX1 container.
#include "Converter.h"

#include "CtxReport.h"
#include "EngineCheck.h"
#include "FileKind.h"
#include "ImageReport.h"
#include "texture/Texture.h"
#include "texture/TextureLoader.h"
#include "texture/TextureMgr.h"

Converter::Converter(std::ostream& output) : out(output) {}

bool Converter::fail(const std::string& which, const std::string& what)
{
    file = which;
    problem = what;
    return false;
}

bool Converter::convert(const std::string& input, const std::string& output, int format)
{
    std::string outExt = FileKind::extension(output);
    if (outExt != "ctx" && outExt != "mtx")
        return fail(output, "the output must end in .ctx or .mtx");
    FileKind::Kind kind = FileKind::detect(input);
    if (kind == FileKind::MISSING || kind == FileKind::EMPTY || kind == FileKind::UNKNOWN)
        return fail(input, FileKind::describe(kind));
    if (!FileKind::isImage(kind))
        return fail(input, "holds no image: it is a " + std::string(FileKind::describe(kind)));
    int natural = 0;
    if (kind == FileKind::CTX1) {
        CtxReport container(out);
        if (!container.inspect(input))
            return fail(input, container.error());
        natural = container.getFormat();
        // The container loader keeps the file's own format whatever it is asked for.
        if (format != 0 && format != natural)
            return fail(input, "a CTX1 file keeps its format " + std::to_string(natural) + "; it cannot become " +
                                   std::to_string(format));
    } else {
        ImageReport image(out);
        if (!image.inspect(input, kind))
            return fail(input, image.error());
        natural = image.naturalFormat();
    }
    Texture* texture = nullptr;
    EngineCheck engine(out);
    if (!engine.checkImage(input, kind, format ? format : natural, &texture, true))
        return fail(input, engine.error());
    TextureLoader* writer = TextureMgr::getHandle()->findLoader(output.c_str());
    bool saved = writer && writer->saveTexture(output.c_str(), texture);
    delete texture;
    if (!saved)
        return fail(output, "cannot be written");
    out << "wrote " << output << ":\n";
    CtxReport written(out);
    if (!written.inspect(output))
        return fail(output, "reads back wrong: " + written.error());
    return true;
}
