# Writes a source file that holds the bytes of INPUT; see Bundle.h.
file(READ ${INPUT} bytes HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
  bytes "${bytes}")
file(WRITE ${OUTPUT} "#include \"resources/Bundle.h\"

namespace NSTambraPacking {

namespace {
constexpr std::uint8_t kBytes[] = {
${bytes}};
}

std::span<const std::uint8_t> ResourceBundle() { return kBytes; }

}  // namespace NSTambraPacking
")
