// Writers that cannot finish: a negative result, a sentence for the user in the language of the
// device, the old file as it was, and nothing left behind, whatever failed and wherever.

#include "foundation/Stream.h"
#include "platform/testing/Faults.h"
#include "platform/testing/Thorough.h"
#include "standard-plugins/tests/support/Changing.h"
#include "standard-plugins/tests/support/MemoryInUse.h"
#include "standard-plugins/tests/support/Writing.h"

#include <algorithm>
#include <sys/stat.h>

using namespace plugintest;
using tavrix::platform::FileOperation;

namespace
{

constexpr u32 width = 273;
constexpr u32 height = 311;

/// A writer and how it is set.
struct Form {
    const char* name;
    const char* pluginFile;
    const char* file;
    const char16_t* setting; // set to 1
    const char16_t* caption;
    const char16_t* japaneseCaption;
    bool goesToStreams = true;
};
const Form forms[] = {
    {"Png", "PNG.dll", "kept.png", nullptr, u"PNG writer", u"PNG 書き込み"},
    {"InterlacedPng", "PNG.dll", "kept.png", u"PngOutputInterlaced", u"PNG writer",
     u"PNG 書き込み"},
    {"Jpeg", "JPEG.dll", "kept.jpg", nullptr, u"JPEG writer", u"JPEG 書き込み"},
    {"Bmp", "BMP.dll", "kept.bmp", nullptr, u"BMP writer", u"BMP 書き込み"},
    {"Pnm", "PNM.dll", "kept.ppm", nullptr, u"PNM writer", u"PNM 書き込み"},
    {"PlainPnm", "PNM.dll", "kept.ppm", u"PnmOutputPlain", u"PNM writer", u"PNM 書き込み"},
    {"ProgressiveJpeg", "JPEG.dll", "kept.jpg", u"JpegOutputProgressive", u"JPEG writer",
     u"JPEG 書き込み"},
    {"Gif", "GIF.dll", "kept.gif", nullptr, u"GIF writer", u"GIF 書き込み"},
    {"InterlacedGif", "GIF.dll", "kept.gif", u"GifOutputInterlaced", u"GIF writer",
     u"GIF 書き込み"},
    {"Tiff", "TIFF.dll", "kept.tif", nullptr, u"TIFF writer", u"TIFF 書き込み", false},
    {"WebP", "WebP.dll", "kept.webp", nullptr, u"WebP writer", u"WebP 書き込み"},
    {"LosslessWebP", "WebP.dll", "kept.webp", u"WebpOutputLossless", u"WebP writer",
     u"WebP 書き込み"},
    {"Jxl", "JXL.dll", "kept.jxl", nullptr, u"JPEG XL writer", u"JPEG XL 書き込み"},
    {"LosslessJxl", "JXL.dll", "kept.jxl", u"JxlOutputLossless", u"JPEG XL writer",
     u"JPEG XL 書き込み"},
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

size_t CountDescriptors()
{
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

/// Takes at most 1000 bytes a write, and no more than there is room for.
class PartialStream final : public Stream
{
public:
    i32 GetName(WCHAR*, i32) override { return -1; }
    i32 GetSize(u64*) override { return -1; }
    i32 Seek(const i64*, u64*, u32) override { return -1; }
    i32 Read(void*, u32*) override { return -1; }
    i32 Write(const void* buffer, u32* length) override
    {
        if (breaks && bytes.size() == room)
            return -1;
        const size_t taken = std::min({size_t{*length}, size_t{1000}, room - bytes.size()});
        bytes.append(static_cast<const char*>(buffer), taken);
        *length = static_cast<u32>(taken);
        return 1;
    }
    i32 Close() override { return 1; }

    std::string bytes;
    size_t room = ~size_t{0};
    bool breaks = false; // where the room ends a write fails
};

class WriterFailure : public WriterTest, public testing::WithParamInterface<Form>
{
protected:
    WriterFailure() : target(folder / GetParam().file)
    {
        Start(9);
        SetForm();
        WriteBytes(target, "the old file");
        Fill(&image, width, height, 24, Wild);
        // What the codec's library and the host make once is there before anything is counted.
        EXPECT_EQ(Write(&image, folder / "first"), 1);
        whole = FileBytes(folder / "first");
        EXPECT_GT(whole.size(), 70000u);
        std::filesystem::remove(folder / "first");
    }

    void Start(u32 language) { Load(GetParam().pluginFile, language); }

    // Of qualities that give enough for several buffers of a file.
    void SetForm()
    {
        for (const char16_t* quality :
             {u"JpegOutputQuality", u"WebpOutputQuality", u"JxlOutputQuality"})
            Set(quality, 100);
        if (GetParam().setting)
            Set(GetParam().setting, 1);
    }

    void ExpectUntouched(const std::string& what)
    {
        EXPECT_EQ(FileBytes(target), "the old file") << what;
        EXPECT_EQ(NamesIn(folder), GetParam().file) << what;
    }

    /// One attempt in each language. `arrange` runs before it, and everything is undone behind it.
    void ExpectFailure(Raster* picture, const std::filesystem::path& file,
                       const std::function<void()>& arrange, i32 result, const char16_t* english,
                       const char16_t* japanese)
    {
        for (const u32 language : {9u, 17u}) {
            Start(language);
            CurrentWriterHost().messages.clear();
            CurrentWriterHost().captions.clear();
            CurrentWriterHost().messageFlags.clear();
            const size_t descriptors = CountDescriptors();
            const size_t memory = MemoryInUse();
            const tavrix::platform::Holdings holdings = tavrix::platform::CountHoldings();
            arrange();
            const i32 got = Write(picture, file);
            tavrix::testing::Reset();
            PretendMemory(u64{1} << 30);
            EXPECT_EQ(got, result);
            WriterHost& host = CurrentWriterHost();
            const bool isEnglish = language == 9;
            ASSERT_EQ(host.messages.size(), 1u);
            EXPECT_EQ(host.messages[0], isEnglish ? english : japanese);
            EXPECT_EQ(host.captions[0],
                      isEnglish ? GetParam().caption : GetParam().japaneseCaption);
            EXPECT_EQ(host.messageFlags[0], 16u);
            ExpectUntouched(isEnglish ? "English" : "Japanese");
            EXPECT_EQ(CountDescriptors(), descriptors);
            if (!leavesLastLine) {
                EXPECT_TRUE(tavrix::platform::CountHoldings() == holdings);
            }
            host.messages.clear();
            host.captions.clear();
            host.progress = {};
            EXPECT_LT(MemoryInUse(), memory + 4096);
        }
    }

    // In memory, where its file was.
    bool leavesLastLine = false;
    std::filesystem::path target;
    Raster image;
    std::string whole;
};

std::vector<Form> FormsForStreams()
{
    std::vector<Form> found;
    std::copy_if(std::begin(forms), std::end(forms), std::back_inserter(found),
                 [](const Form& form) { return form.goesToStreams; });
    return found;
}

class StreamWriterFailure : public WriterFailure
{
};

std::string NameOf(const testing::TestParamInfo<Form>& entry)
{
    return entry.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, WriterFailure, testing::ValuesIn(forms), NameOf);
INSTANTIATE_TEST_SUITE_P(Each, StreamWriterFailure, testing::ValuesIn(FormsForStreams()), NameOf);

constexpr const char16_t* full = u"The disk is full.";
constexpr const char16_t* fullJapanese = u"ディスクの空き容量が不足しています。";
constexpr const char16_t* noFolder = u"The folder cannot be found.";
constexpr const char16_t* noFolderJapanese = u"フォルダが見つかりません。";
constexpr const char16_t* locked = u"The folder or the file is write-protected.";
constexpr const char16_t* lockedJapanese = u"フォルダまたはファイルに書き込めません。";
constexpr const char16_t* noPlace = u"The finished file cannot be put in its place.";
constexpr const char16_t* noPlaceJapanese = u"完成したファイルを所定の場所に置けません。";
constexpr const char16_t* noLine =
    u"A line of the picture cannot be had; memory or temporary space is short.";
constexpr const char16_t* noLineJapanese =
    u"画像の行を取得できません。メモリまたは一時領域が不足しています。";

void FailAt(FileOperation failing)
{
    tavrix::testing::SetFileFault(
        [failing](FileOperation operation, const WCHAR*, DWORD*) { return operation == failing; });
}

} // namespace

TEST_P(WriterFailure, SucceedsWhereNothingFailsAndTakesTheOldFilesPlace)
{
    chmod(target.c_str(), 0640);
    EXPECT_EQ(Write(&image, target), 1);
    EXPECT_TRUE(FileBytes(target) == whole);
    EXPECT_EQ(NamesIn(folder), GetParam().file);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    struct stat info {
    };
    ASSERT_EQ(stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST_P(WriterFailure, DiskThatIsFull)
{
    for (const u64 room : {u64{0}, u64{1}, u64{65536}, u64{70000}})
        ExpectFailure(
            &image, target, [room] { tavrix::testing::SetDiskSpace(room); }, -1, full,
            fullJapanese);
    tavrix::testing::SetDiskSpace(whole.size() - 1);
    EXPECT_EQ(Write(&image, target), -1);
    ExpectUntouched("the last byte");
    tavrix::testing::SetDiskSpace(whole.size());
    EXPECT_EQ(Write(&image, target), 1);
}

TEST_P(WriterFailure, FileThatCannotBeMadeWrittenOrPutInItsPlace)
{
    ExpectFailure(
        &image, target, [] { FailAt(FileOperation::Create); }, -1, full, fullJapanese);
    ExpectFailure(
        &image, target, [] { FailAt(FileOperation::Write); }, -1, full, fullJapanese);
    ExpectFailure(
        &image, target, [] { FailAt(FileOperation::Sync); }, -1, noPlace, noPlaceJapanese);
    ExpectFailure(
        &image, target, [] { FailAt(FileOperation::Rename); }, -1, noPlace, noPlaceJapanese);
}

TEST_P(WriterFailure, EveryWriteOfTheFileMayFailOrComeUpShort)
{
    using namespace tavrix::testing;
    for (const FaultKind kind : {FaultKind::Write, FaultKind::ShortWrite, FaultKind::Create}) {
        i32 result = 0;
        const unsigned fired = ForEveryFault(
            kind, [&] { result = Write(&image, target); },
            [&](bool) {
                if (result < 0) {
                    ExpectUntouched("a fault");
                } else {
                    EXPECT_TRUE(FileBytes(target) == whole);
                    WriteBytes(target, "the old file");
                }
            });
        EXPECT_GE(fired, kind == FaultKind::Create ? 1u : 2u);
        CurrentWriterHost() = {};
        SetForm();
    }
}

TEST_P(WriterFailure, FolderThatIsNotThere)
{
    const auto nothing = [] {};
    ExpectFailure(&image, folder / "gone" / "a.png", nothing, -1, noFolder, noFolderJapanese);
    ExpectFailure(&image, folder / std::string(240, 'x'), nothing, -1, noFolder, noFolderJapanese);
}

TEST_P(WriterFailure, FolderThatGoesWhileTheFileIsWritten)
{
    const std::filesystem::path going = folder / "going";
    const auto arrange = [&going] {
        std::filesystem::create_directory(going);
        CurrentWriterHost().onProgress = [going] { std::filesystem::remove_all(going); };
    };
    ExpectFailure(&image, going / "a", arrange, -1, noFolder, noFolderJapanese);
}

TEST_P(WriterFailure, FolderOrFileThatTakesNoWrites)
{
    const auto nothing = [] {};
    // Of this folder of the host not even root makes files.
    ExpectFailure(&image, "/sys/a.png", nothing, -1, locked, lockedJapanese);
    ExpectFailure(&image, "/sys", nothing, -1, locked, lockedJapanese);
    chmod(target.c_str(), 0444);
    ExpectFailure(&image, target, nothing, -1, locked, lockedJapanese);
}

TEST_P(WriterFailure, LineThatCannotBeHad)
{
    // Every line lies in a file of its own, and one that is read comes into memory: another has to
    // go. The disk takes none from the n-th of these on.
    for (const int lines : {0, 1, 100}) {
        PretendMemory(1000);
        Raster paged;
        Fill(&paged, width, height, 24, Wild);
        const auto arrange = [lines] {
            PretendMemory(1000);
            FailLineFilesFrom(lines);
        };
        // Unlocking the last line does nothing, and bitmaps begin with it.
        leavesLastLine = GetParam().name == std::string("Bmp");
        ExpectFailure(&paged, target, arrange, -101, noLine, noLineJapanese);
    }
}

TEST_P(WriterFailure, LineThatCannotGoBackToItsFileButStaysInMemoryIsNotLost)
{
    // The first to go is the last line, which the filling left in memory: it makes room for the
    // first that is asked for.
    for (const int lines : {1, 2, 100}) {
        PretendMemory(1000);
        Raster paged;
        Fill(&paged, width, height, 24, Wild);
        FailLineFilesFrom(lines, false);
        EXPECT_EQ(Write(&paged, target), 1) << lines;
        tavrix::testing::Reset();
        PretendMemory(u64{1} << 30);
        EXPECT_TRUE(FileBytes(target) == whole) << lines;
        EXPECT_TRUE(CurrentWriterHost().messages.empty());
    }
}

TEST_P(WriterFailure, PictureWhoseLinesLieInFilesGivesTheSameFile)
{
    PretendMemory(1000);
    Raster paged;
    Fill(&paged, width, height, 24, Wild);
    EXPECT_EQ(Write(&paged, target), 1);
    EXPECT_TRUE(FileBytes(target) == whole);
}

TEST_P(WriterFailure, RefusalOfEachProgressReportEndsItWithoutAWord)
{
    ASSERT_EQ(Write(&image, folder / "counted"), 1);
    std::filesystem::remove(folder / "counted");
    const auto reports = static_cast<unsigned>(CurrentWriterHost().progress.size());
    ASSERT_GE(reports, 60u);
    for (unsigned place = 1; place <= reports; place = tavrix::testing::NextPlace(place)) {
        CurrentWriterHost().refuseFrom = static_cast<int>(place) - 1;
        EXPECT_EQ(Write(&image, target), -9) << place;
        EXPECT_EQ(CurrentWriterHost().progress.size(), place);
        ExpectUntouched("refusal " + std::to_string(place));
    }
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
}

TEST_P(WriterFailure, PictureThatCannotBeWrittenMakesNoFile)
{
    Raster sixteen;
    ASSERT_EQ(sixteen.Create(5, 4, 16, nullptr, nullptr), 1);
    int made = 0;
    const auto count = [&made] {
        tavrix::testing::SetFileFault([&made](FileOperation operation, const WCHAR*, DWORD*) {
            made += operation == FileOperation::Create;
            return false;
        });
    };
    ExpectFailure(&sixteen, target, count, -1,
                  u"Only pictures of 8, 24 and 32 bits a pixel can be written.",
                  u"書き込めるのは 8、24、32 ビットの画像だけです。");
    Raster empty;
    ExpectFailure(&empty, target, count, -1, u"The picture has no pixels.",
                  u"画像に画素がありません。");
    EXPECT_EQ(made, 0);
}

TEST_P(WriterFailure, NoFileOfTheUserHasTheNameThatIsWrittenUnder)
{
    // The first three numbers give names that are taken, one of them in other letters.
    for (const char* name : {"~tavrix00000", "~TAVRIX00001", "~tavrix00002"})
        WriteBytes(folder / name, "mine");
    tavrix::testing::SetRandom({0});
    std::string during;
    CurrentWriterHost().onProgress = [&] { during = NamesIn(folder); };
    EXPECT_EQ(Write(&image, target), 1);
    EXPECT_TRUE(FileBytes(target) == whole);
    EXPECT_NE(during.find("~tavrix00003"), std::string::npos) << during;
    EXPECT_EQ(NamesIn(folder),
              std::string(GetParam().file) + "|~TAVRIX00001|~tavrix00000|~tavrix00002");
    for (const char* name : {"~tavrix00000", "~TAVRIX00001", "~tavrix00002"})
        EXPECT_EQ(FileBytes(folder / name), "mine");
}

TEST_P(WriterFailure, LongestPathAndLongestNameHaveRoomForTheFileBesideThem)
{
    // \ is the home folder of the test: the path of the device is as long as it can be, and has
    // room for a name of five characters alone.
    const std::u16string deep(252, u'd');
    const std::u16string path = u"\\" + deep + u"\\a.png";
    ASSERT_EQ(path.size(), 259u);
    ASSERT_TRUE(CreateDirectoryW((u"\\" + deep).c_str(), nullptr));
    EXPECT_EQ(plugin.PutImage(path.c_str(), nullptr, &image, WriterCallbacks()), 1);
    EXPECT_TRUE(FileBytes(tavrix::testing::HostPath(path.c_str())) == whole);
    const std::u16string name = u"\\" + std::u16string(251, u'n') + u".png"; // 255 bytes
    EXPECT_EQ(plugin.PutImage(name.c_str(), nullptr, &image, WriterCallbacks()), 1);
    EXPECT_TRUE(FileBytes(tavrix::testing::HostPath(name.c_str())) == whole);
    EXPECT_EQ(plugin.PutImage((path + u"x").c_str(), nullptr, &image, WriterCallbacks()), -1);
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    EXPECT_TRUE(RemoveDirectoryW((u"\\" + deep).c_str())) << "nothing else is in it";
    EXPECT_TRUE(DeleteFileW(name.c_str()));
    image.UnlockAll();
}

TEST_P(StreamWriterFailure, StreamThatTakesLittleAtATimeGetsAllAndOneThatIsFullIsAFailure)
{
    PartialStream slow;
    EXPECT_EQ(WriteStream(&image, &slow), 1);
    EXPECT_TRUE(slow.bytes == whole);
    for (const size_t room : {size_t{0}, size_t{1}, whole.size() / 2, whole.size() - 1}) {
        PartialStream small;
        small.room = room;
        EXPECT_EQ(WriteStream(&image, &small), -1) << room;
        EXPECT_TRUE(small.bytes == whole.substr(0, room)) << room;
        ASSERT_FALSE(CurrentWriterHost().messages.empty());
        EXPECT_EQ(CurrentWriterHost().messages.back(), full);
        PartialStream broken;
        broken.room = room;
        broken.breaks = true;
        EXPECT_EQ(WriteStream(&image, &broken), -1) << room;
        EXPECT_EQ(CurrentWriterHost().messages.back(), u"The file cannot be written.");
    }
    EXPECT_EQ(CurrentWriterHost().messages.size(), 8u);
    ExpectUntouched("a stream has no file");
}

TEST_P(WriterFailure, LinkStaysALinkAndItsFileIsReplaced)
{
    std::filesystem::create_directory(folder / "real");
    WriteBytes(folder / "real/file", "the old file");
    std::filesystem::create_symlink("real/file", folder / "link");
    EXPECT_EQ(Write(&image, folder / "link"), 1);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_TRUE(FileBytes(folder / "real/file") == whole);
    EXPECT_EQ(NamesIn(folder / "real"), "file");
}

TEST_P(WriterFailure, MissingArgumentsAreRefusedWithoutAWord)
{
    EXPECT_EQ(plugin.PutImage(nullptr, nullptr, &image, WriterCallbacks()), -4);
    PluginCallbacks silent = WriterCallbacks();
    silent.progress = nullptr;
    silent.message = nullptr;
    silent.get = nullptr;
    EXPECT_EQ(plugin.PutImage(DevicePath(folder / "a").c_str(), nullptr, &image, silent), 1);
    EXPECT_LT(plugin.PutImage(DevicePath(folder / "no/a").c_str(), nullptr, &image, silent), 0);
    EXPECT_TRUE(CurrentWriterHost().messages.empty());
    image.UnlockAll();
}
