// What cannot be done: one clear line, the right exit code, and no file left behind.
#include <gtest/gtest.h>

#include <algorithm>

#include "Program.h"

namespace tooltest {
namespace {

struct Bad {
  const char* name;
  std::string command;
  int exitCode;
  std::vector<std::string> said;  // parts of the message
  std::string input = "";
};

class BadInput : public testing::TestWithParam<Bad> {};

TEST_P(BadInput, EndsWithOneClearLine) {
  const Bad& bad = GetParam();
  Workplace place;
  const std::string noise = Noise(40 * 30 * 3, 1);
  ASSERT_EQ(place.Run("copy - whole.png --layout bgr --size 40x30", noise).exitCode, 0);
  ASSERT_EQ(place.Run("copy whole.png whole.jpg").exitCode, 0);
  ASSERT_EQ(place.Run("fill grey.png --layout grey --size 40x30 --colour 1").exitCode, 0);
  ASSERT_EQ(place.Run("copy whole.png alpha.png --to bgra").exitCode, 0);
  const std::string png = place.Read("whole.png"), jpeg = place.Read("whole.jpg");
  place.Write("cut.png", png.substr(0, png.size() / 2));
  place.Write("endless.png", png.substr(0, png.size() - 12));  // without its last chunk
  place.Write("cut.jpg", jpeg.substr(0, jpeg.size() / 2));
  std::string flipped = png;
  flipped[png.size() / 2] = static_cast<char>(flipped[png.size() / 2] ^ 0x10);
  place.Write("flipped.png", flipped);
  flipped = jpeg;  // a marker in the middle of the scan
  flipped.replace(jpeg.size() - 300, 2, "\xff\xda");
  place.Write("flipped.jpg", flipped);
  place.Write("empty", "");
  place.Write("sums.txt", "00000000  empty\nnot a line\n");
  place.Write("palette.txt", "#010203\nred\n");
  place.Write("long.txt", "#010203\n#010203\n#010203\n");
  place.Write("old.png", "what was here before");
  std::filesystem::create_directory(place.Path("folder"));
  const auto before = place.Files();

  const Outcome outcome = place.Run(Words(bad.command), bad.input);
  EXPECT_EQ(outcome.exitCode, bad.exitCode) << outcome.err;
  EXPECT_EQ(outcome.err.substr(0, 8), "qvtool: ");
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  for (const std::string& part : bad.said)
    EXPECT_NE(outcome.err.find(part), std::string::npos)
        << "'" << part << "' is not in " << outcome.err;
  EXPECT_EQ(place.Files(), before);
  EXPECT_EQ(place.Read("old.png"), "what was here before");
}

const std::string kMono = "YUV4MPEG2 W2 H1 Cmono\n", kFrame = "twelve bytes";

const Bad kBad[] = {
    // Wrong command lines.
    {"noCommand", "", 2, {"subcommand", "--help"}},
    {"unknownCommand", "frobnicate a", 2, {"'frobnicate'", "mirror"}},
    {"unknownOption", "mirror whole.png x.png --angle 3", 2, {"--angle", "mirror --help"}},
    {"noOutput", "mirror whole.png", 2, {"OUT"}},
    {"unknownAxis", "mirror whole.png x.png --axis up", 2,
     {"--axis", "'up'", "top-bottom|left-right|both"}},
    {"sizeOfZero", "fill x.png --size 0x4 --colour 1", 2, {"--size", "'0x4'", "at least 1"}},
    {"sizeWithoutHeight", "fill x.png --size 40 --colour 1", 2, {"--size", "'40'"}},
    {"sizeBeyondInt", "fill x.png --size 99999999999x1 --colour 1", 2, {"--size"}},
    {"layoutUnknown", "copy - x.png --layout rgb565 --size 2x2", 2,
     {"--layout", "'rgb565'", "i420"}},
    {"sizeOfFiles", "resize whole.png x.png --size 20x15 --factor 1", 2, {"--layout", "--to"}},
    {"frames", "copy whole.png x.png --frames 3-2", 2, {"--frames", "'3-2'", "A-B"}},
    {"framesBeyond", "copy whole.png x.png --frames 2-", 1, {"frame 2", "1"}},
    {"fitAndTo", "resize whole.png x.png --to 9x --fit 9x9", 2, {"--fit", "--to"}},
    {"toNothing", "resize whole.png x.png --to x", 2, {"--to", "'x'"}},
    {"layoutWithoutSize", "copy - x.png --layout bgr", 2, {"--size"}},
    {"rate", "copy - x.y4m --layout grey --size 1x1 --rate 25", 2, {"--rate", "'25'"}},
    {"colour", "fill x.png --size 4x4 --colour #12345", 2, {"--colour", "'#12345'"}},
    {"colourTooLarge", "fill x.png --size 4x4 --colour 1,2,256", 2, {"--colour"}},
    {"colourOfGrey", "fill grey.png x.png --colour #ff0000", 2, {"--colour", "grey"}},
    {"fillWithoutSize", "fill x.png --colour 1", 2, {"--size"}},
    {"fillThreeFiles", "fill a b c --colour 1", 2, {"3 files given"}},
    {"scaleTooLarge", "scale whole.png x.png --by 256", 2, {"--by", "'256'", "0 to 255"}},
    {"bits", "palette grey.png x.png --bits 9", 2, {"--bits", "1 to 8"}},
    {"quality", "copy whole.png x.jpg --quality 0", 2, {"--quality", "1 to 100"}},
    {"regionForm", "copy whole.png x.png --region 1,2,3", 2, {"--region", "'1,2,3'"}},
    {"regionOutside", "copy whole.png x.png --region 30,0,11,5", 2, {"--region", "40x30"}},
    {"regionFarOutside", "copy whole.png x.png --region 2147483647,0,1,1", 2, {"--region"}},
    {"angleForm", "rotate whole.png x.png --angle 3deg", 2, {"--angle", "'3deg'"}},
    {"quadForm", "warp whole.png x.png --quad 1,2,3,4,5,6,7", 2, {"--quad", "top-left"}},
    {"quadNotFinite", "warp whole.png x.png --quad 0,0,9,0,inf,9,0,9", 2, {"--quad", "'0,0,9"}},
    {"quadDented", "warp whole.png old.png --quad 0,0,30,0,8,8,0,30", 1, {"-58", "convex"}},
    {"unwarpNowhere", "warp whole.png old.png --unwarp --quad 1,1,1,1,1,1,1,1", 1, {"-58"}},
    {"regionBetweenChroma", "copy - x.y4m --region 1,0,2,2", 2,
     {"multiple of 2,2"}, "YUV4MPEG2 W4 H2\nFRAME\nabcdefghABCD"},
    {"extension", "copy whole.png x.bmp", 2, {"x.bmp", "'.bmp'", ".png"}},
    {"noExtension", "copy whole.png x", 2, {"x:", "extension"}},
    {"pattern", "copy whole.png x-%s.png", 2, {"'%s'", "%04d"}},
    {"controlBytes", "copy no\x1b[31mthing.png x.png", 1, {"no\\x1b[31mthing.png: "}},
    {"factorToNothing", "resize whole.png x.png --factor 1e-9", 2, {"--factor", "pixel"}},
    {"format", "copy whole.png x.png --format gif", 2, {"--format", "'gif'"}},
    {"ontoAlone", "copy grey.png x.png --onto whole.png", 2, {"--onto"}},
    // Chains: the step is named, and all of them are looked at before the first frame.
    {"runNothing", "run ; whole.png old.png", 2, {"STEPS"}},
    {"runQuote", "run 'overlay --with \"a' whole.png old.png", 2, {"quote \"", "not closed"}},
    {"runUnknownStep", "run mirror;info cut.png old.png", 2, {"step 2 (info)", "mirror"}},
    {"runUnknownOption", "run 'mirror --up' cut.png old.png", 2, {"step 1 (mirror)", "--up"}},
    {"runArgument", "run 'mirror; crop 1,2,3' cut.png old.png", 2, {"step 2 (crop)", "'1,2,3'"}},
    {"runContradiction", "run mirror;resize cut.png old.png", 2, {"step 2 (resize)", "--to"}},
    {"runNoLogo", "run 'mirror; overlay --with no.png' cut.png old.png", 2,
     {"step 2 (overlay)", "no.png"}},
    {"runFrame", "run 'mirror; palette' whole.png old.png", 1, {"step 2 (palette)", "bgr"}},
    {"runOutside", "run 'mirror; crop 40,0,1,1' whole.png old.png", 2, {"step 2 (crop)", "40x30"}},
    // Several files.
    {"manyWithoutFolder", "mirror whole.png grey.png alpha.png", 2, {"3 files given", "--out"}},
    {"manyInOne", "mirror whole.png folder/whole.png --out folder", 2,
     {"whole.png and folder/whole.png", "folder/whole.png"}},
    {"manyToOneName", "mirror whole.png whole.jpg --out new --format png", 2, {"new/whole.png"}},
    {"manyWithoutName", "mirror whole.png - --out new", 2, {"-: is not the name", "--out"}},
    {"manyExtension", "mirror whole.png palette.txt --out new", 2, {"'.txt'", "--format"}},
    {"manyArgument", "resize whole.png whole.jpg --out new", 2, {"--to"}},
    {"manyIntoFile", "mirror whole.png --out old.png", 1, {"old.png", "folder"}},
    {"jobsWithoutFolder", "mirror whole.png x.png --jobs 2", 2, {"--jobs", "--out"}},
    {"jobs", "mirror whole.png --out new --jobs -1", 2, {"--jobs", "0 to 256"}},
    // Inputs that cannot be read.
    {"noFile", "copy nothing.png x.png", 1, {"nothing.png", "No such file"}},
    {"folderAsInput", "copy folder x.png", 1, {"folder", "directory"}},
    {"empty", "copy empty x.png", 1, {"empty: is empty"}},
    {"emptyPipe", "copy - x.png", 1, {"standard input"}},
    {"unknownContent", "copy - x.png", 1, {"standard input", "--layout"}, "GIF89a..........."},
    {"pngCut", "mirror cut.png old.png", 1, {"cut.png"}},
    {"pngWithoutEnd", "mirror endless.png old.png", 1, {"endless.png"}},
    {"pngFlipped", "mirror flipped.png old.png", 1, {"flipped.png"}},
    {"pngOnlySignature", "copy - old.png", 1, {"not a whole PNG"}, "\x89PNG\r\n\x1a\n"},
    {"jpegCut", "mirror cut.jpg old.png", 1, {"cut.jpg"}},
    {"jpegFlipped", "mirror flipped.jpg old.png", 1, {"flipped.jpg"}},
    {"jpegOnlyMarker", "copy - old.png", 1, {"not a whole JPEG"}, "\xff\xd8\xff\xe0"},
    {"y4mHeaderCut", "copy - x.y4m", 1, {"header"}, "YUV4MPEG2 W2 H1"},
    {"y4mNoWidth", "copy - x.y4m", 1, {"no width"}, "YUV4MPEG2 H1\n"},
    {"y4mZeroHeight", "copy - x.y4m", 1, {"'H0'"}, "YUV4MPEG2 W2 H0\nFRAME\n"},
    {"y4mNegative", "copy - x.y4m", 1, {"'W-2'"}, "YUV4MPEG2 W-2 H2\nFRAME\n"},
    {"y4mHuge", "copy - x.y4m", 1,
     {"cannot be held"}, "YUV4MPEG2 W2000000000 H2000000000\nFRAME\n"},
    {"y4mElevenBits", "copy - x.y4m", 1, {"'420p11'", "420p10"}, "YUV4MPEG2 W2 H2 C420p11\n"},
    {"netpbmCut", "copy - x.png", 1, {"PPM", "cut short"}, "P6 2 2 255\nabcdefghijk"},
    {"netpbmHeader", "copy - x.png", 1, {"PPM", "header"}, "P5 2 -2 255\nabcdefghijk"},
    {"numbered", "copy n-%02d.png x.y4m", 1, {"n-01.png"}},
    {"y4mNoFrame", "copy - x.y4m", 1, {"no frame"}, kMono},
    {"y4mFrameCut", "copy - x.y4m", 1, {"frame 2", "1 of 2 bytes"}, kMono + "FRAME\nabFRAME\nc"},
    {"y4mFrameHeaderCut", "copy - x.y4m", 1, {"frame 2"}, kMono + "FRAME\nabFRA"},
    {"y4mNotAFrame", "copy - x.y4m", 1, {"frame 2"}, kMono + "FRAME\nabGRAME\ncd"},
    {"rawSize", "copy - x.raw --layout bgr --size 2x2", 1,
     {"11 bytes given", "multiple of 12", "bgr frame of 2x2"}, "elevenbytes"},
    // Frames that do not fit what is asked.
    {"beyondMemory", "fill x.png --size 600000x600000 --colour 1", 1,
     {"cannot be held", "the machine has"}},
    {"rowBeyondInt", "fill x.png --size 2000000000x1 --colour 1", 1, {"cannot be held"}},
    {"framesAsPicture", "copy - x.png", 1, {"x.png", "%04d"}, kMono + "FRAME\nabFRAME\ncd"},
    {"colourThroughPalette", "palette whole.png x.png", 1, {"one byte a pixel", "bgr"}},
    {"colourIntoChannel", "copy whole.png x.png --to red", 1, {"--to", "grey"}},
    {"noAlpha", "scale whole.png x.png --by 9 --alpha", 1, {"--alpha", "bgr"}},
    {"paletteLine", "palette grey.png x.png --palette palette.txt", 1,
     {"palette.txt", "line 2", "'red'"}},
    {"paletteTooLong", "palette grey.png x.png --palette long.txt --bits 1", 1,
     {"long.txt", "2 entries"}},
    {"rotatePacked", "rotate - x.raw --layout nv12 --size 2x2 --angle 9", 1, {"2"}, "abcdef"},
    {"mirrorPacked", "mirror - x.raw --layout yuyv --size 2x1", 1, {"4"}, "abcd"},
    {"overlayWithout", "overlay whole.png x.png", 2, {"--with"}},
    {"overlayPlace", "overlay whole.png x.png --with alpha.png --at 3", 2, {"--at", "'3'", "X,Y"}},
    {"overlayOpacity", "overlay whole.png x.png --with alpha.png --opacity 256", 2,
     {"--opacity", "0 to 255"}},
    {"overlayNoLogo", "overlay whole.png old.png --with nothing.png", 1, {"nothing.png"}},
    {"overlayCutLogo", "overlay whole.png old.png --with cut.png", 1, {"cut.png"}},
    {"blendOperation", "blend whole.png x.png --with whole.png --operation under", 2,
     {"--operation", "'under'", "atop"}},
    {"blendAlpha", "blend whole.png x.png --with whole.png --alpha1 -1", 2,
     {"--alpha1", "0 to 255"}},
    {"blendWithout", "blend whole.png x.png", 2, {"--with"}},
    {"blendLayouts", "blend whole.png old.png --with grey.png", 1,
     {"the frames are bgr", "grey.png is grey", "alike"}},
    {"blendVideo", "blend - x.y4m --with grey.png", 1, {"i420", "bgra"},
     "YUV4MPEG2 W2 H2\nFRAME\nabcdef"},
    {"deinterlaceWeight", "deinterlace whole.png x.png --centre-weight 257", 2,
     {"--centre-weight", "0 to 256"}},
    {"deinterlaceMode", "deinterlace whole.png x.png --mode 2", 2,
     {"--mode", "'2'", "inner|upper|0|1"}},
    {"deinterlaceLow", "deinterlace - x.y4m", 1, {"2 rows", "3 at least"},
     "YUV4MPEG2 W2 H2\nFRAME\nabcdef"},
    {"convertExactBgr", "convert - x.raw --exact-api --layout bgr --size 2x2", 1,
     {"bgr frames given"}, kFrame},
    {"convertExactI420", "convert - x.raw --exact-api --layout i420 --size 2x2 --to yv12", 1,
     {"made from yuyv and nv12"}, kFrame},
    {"convertExactNarrow", "convert - x.raw --exact-api --layout yuyv --size 1x3", 1,
     {"1 pixel wide"}, kFrame},
    {"convertExactLow", "convert - x.raw --exact-api --layout nv12 --size 2x1", 1, {"2x1"}, kFrame},
    {"convertExactLowPacked", "convert - x.raw --exact-api --layout yuyv --size 2x1 --to i420", 1,
     {"2x1"}, kFrame},
    {"convertExactToGrey", "convert - x.raw --exact-api --layout yuyv --size 2x1 --to grey", 2,
     {"--to"}, kFrame},
    {"convertLayout", "convert whole.png x.raw --to i421", 2, {"--to", "'i421'", "nv21"}},
    {"matrix", "convert whole.png x.raw --to i420 --matrix bt2100", 2, {"--matrix", "bt709"}},
    {"exactMitchell", "resize whole.png x.png --to 9x9 --exact-api --method mitchell", 2,
     {"mitchell"}},
    {"checksumNoFile", "checksum nothing", 1, {"nothing: cannot open"}},
    {"checksumFolder", "checksum folder", 1, {"folder: holds no files"}},
    {"checksumEmptyList", "checksum --check empty", 1, {"empty: holds no checksums"}},
    {"checksumAlgorithm", "checksum --algorithm md5 empty", 2, {"crc32|adler32"}},
    {"checksumList", "checksum --check sums.txt", 1, {"sums.txt: line 2:"}},
    {"demoBadInput", "demo page --input cut.png", 1, {"cut.png"}},
    // Outputs that cannot be written.
    {"noFolder", "copy whole.png nowhere/x.png", 1, {"nowhere/x.png", "No such file"}},
    {"folderAsOutput", "copy whole.png folder --format png", 1, {"folder", "directory"}},
    {"fullDevice", "copy whole.png /dev/full --format png", 1, {"/dev/full", "No space"}},
    {"demoIntoFile", "demo old.png", 1, {"old.png"}},
};

INSTANTIATE_TEST_SUITE_P(All, BadInput, testing::ValuesIn(kBad),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace tooltest
