#include <cstdio>

#include "zexif/command.h"
#include "zexif/edit_session.h"
#include "zexif/output.h"
#include "zexif.h"

namespace {

constexpr uint32_t MARKER_APP1 = 0xE1;
constexpr size_t SIGNATURE_SIZE = 4;

// The library compares the first four payload bytes as one number, the
// first byte low.
uint32_t PackSignature(const std::string &text)
{
    uint32_t signature = 0;
    for (size_t i = 0; i < SIGNATURE_SIZE; ++i) signature |= uint32_t(static_cast<unsigned char>(text[i])) << (8 * i);
    return signature;
}

EditResult RemoveMarker(CExifDoc *doc, const std::string &path, uint32_t code, uint32_t signature)
{
    if (zExifRemoveMarker(doc, static_cast<int>(code), signature) == 0) return EDIT_DONE;
    std::fprintf(Err(), "zexif: %s is no JPEG or has no marker 0x%02X\n", path.c_str(), code);
    return EDIT_FAILED;
}

}  // namespace

// APP1 goes whole, whatever it holds, so it alone needs no signature; for any
// other code the library removes the first marker of that code only when its
// payload starts with the signature.
int RunRemoveMarker(const ParsedArguments &parsed)
{
    uint32_t code;
    if (parsed.positional.size() < 2 || !ParseNumber(parsed.positional.back(), &code) || code > 0xFF) return EXIT_USAGE;
    const std::string text = parsed.Value("signature", "");
    if (parsed.Has("signature") ? text.size() != SIGNATURE_SIZE : code != MARKER_APP1) return EXIT_USAGE;
    const uint32_t signature = text.empty() ? 0 : PackSignature(text);
    const std::vector<std::string> files(parsed.positional.begin(), parsed.positional.end() - 1);
    return EditEach(parsed, files,
                    [&](CExifDoc *doc, const std::string &path) { return RemoveMarker(doc, path, code, signature); });
}
