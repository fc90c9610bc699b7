# Writes the bytes of INPUT as the C++ array SAMPLE_JPEG into OUTPUT:
#   cmake -DINPUT=sample.jpg -DOUTPUT=sample_image_data.cpp -P embed_file.cmake
file(READ ${INPUT} hex HEX)
string(LENGTH "${hex}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT} "// Made at build time from the sample image; not to be edited.\n"
  "#include \"zexif/sample_image.h\"\n\n"
  "const unsigned char SAMPLE_JPEG[] = {\n${bytes}};\n"
  "const size_t SAMPLE_JPEG_SIZE = ${size};\n")
