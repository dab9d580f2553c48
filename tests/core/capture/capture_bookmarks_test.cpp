#include "capture/capture_bookmarks.h"
#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/disk_sync.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace busquill::test {
namespace {

/// A document of a file with the samples -5 to 5, and perhaps bookmarks beside it.
class BookmarksOfADocument : public testing::Test {
protected:
    BookmarksOfADocument() {
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",-5,5\n";
        for (int i = -5; i <= 5; ++i) {
            text += std::to_string(i) + ",1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
        }
        dir.Write("a.tra", text);
        context.saveTrace = [this](CTesselDoc&, const std::string& path) {
            if (!refuses) {
                std::ofstream(path) << "a copy";
            }
            return !refuses;
        };
        context.bookmarksWritten = [this](const CTesselDoc&, const std::string& capture) {
            written.push_back(capture);
        };
        context.captureReplaced = [this](const CTesselDoc&, const std::string& capture) {
            replaced.push_back(capture);
        };
    }
    std::unique_ptr<CTesselDoc> Open(const std::string& name = "a.tra") {
        auto document = std::make_unique<CTesselDoc>(context, prompts);
        EXPECT_TRUE(document->OnOpenDocument(dir.File(name)));
        document->SetPathName(dir.File(name));
        document->SetModifiedFlag(false);
        return document;
    }
    bool Save(CTesselDoc& document, const std::string& name) {
        const bool saved = document.OnSaveDocument(dir.File(name));
        if (saved) {
            document.OnSaved(dir.File(name));
        }
        return saved;
    }
    Bookmarks InFile(const std::string& capture = "a.tra") {
        return ReadBookmarks(BookmarkPathOf(dir.File(capture))).bookmarks;
    }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    std::vector<std::string> written;
    std::vector<std::string> replaced;
    bool refuses = false;
};

TEST_F(BookmarksOfADocument, AreReadWithIt) {
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n-2\tfirst\n99\toutside\n");
    const auto document = Open();
    EXPECT_EQ(document->GetBookmarks(), (Bookmarks{{-2, "first"}, {99, "outside"}}));
    EXPECT_TRUE(prompts.Texts().empty());
    EXPECT_EQ(document->SampleNumbered(-2), 3);
    EXPECT_EQ(document->SampleNumbered(99), std::nullopt);
    EXPECT_EQ(document->SampleNumbered(-6), std::nullopt);
    EXPECT_EQ(document->SampleNumbered(5), 10);
    EXPECT_EQ(document->SampleNumbered(6), std::nullopt);
}

TEST_F(BookmarksOfADocument, AreWrittenAtEachChangeAndLeaveTheCaptureAlone) {
    const auto document = Open();
    const std::string before = ReadWholeFile(dir.File("a.tra"));
    EXPECT_TRUE(document->SetBookmark(3, "later"));
    EXPECT_EQ(InFile(), (Bookmarks{{3, "later"}}));
    EXPECT_TRUE(document->SetBookmark(-5, ""));
    EXPECT_TRUE(document->SetBookmark(3, "now"));
    EXPECT_EQ(InFile(), (Bookmarks{{-5, ""}, {3, "now"}}));
    EXPECT_EQ(document->GetBookmarks(), InFile());
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra")), before);
    EXPECT_EQ(written, std::vector(3, dir.File("a.tra")));
}

TEST_F(BookmarksOfADocument, TakeTheirFileWithThem) {
    const auto document = Open();
    document->SetBookmark(3, "a");
    document->SetBookmark(4, "b");
    document->SetBookmark(3, std::nullopt);
    EXPECT_EQ(InFile(), (Bookmarks{{4, "b"}}));
    document->SetBookmark(4, std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(dir.File("a.tra.bookmarks")));
    EXPECT_TRUE(prompts.Texts().empty());
}

TEST_F(BookmarksOfADocument, ChangedTogetherAreWrittenOnce) {
    const auto document = Open();
    const DiskSync disk;
    EXPECT_TRUE(document->ChangeBookmarks({{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}}));
    EXPECT_TRUE(document->ChangeBookmarks({{1, std::nullopt}, {3, std::nullopt}, {4, "changed"}}));
    EXPECT_EQ(InFile(), (Bookmarks{{2, "b"}, {4, "changed"}}));
    EXPECT_EQ(disk.Count(), 2);
    EXPECT_EQ(written.size(), 2U);
}

TEST_F(BookmarksOfADocument, ChangedTogetherAreAllChangedOrNone) {
    const auto document = Open();
    document->SetBookmark(1, "kept");
    EXPECT_FALSE(document->ChangeBookmarks(
        {{1, std::nullopt}, {2, "new"}, {3, std::string(longestNote + 1, 'a')}}));
    EXPECT_EQ(InFile(), (Bookmarks{{1, "kept"}}));
    EXPECT_EQ(document->GetBookmarks(), InFile());
}

TEST_F(BookmarksOfADocument, OutsideOfItStayInTheFile) {
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n99\toutside\n");
    const auto document = Open();
    document->SetBookmark(1, "inside");
    EXPECT_EQ(InFile(), (Bookmarks{{1, "inside"}, {99, "outside"}}));
}

TEST_F(BookmarksOfADocument, ThatOthersHaveWrittenMeanwhileAreKept) {
    const auto document = Open();
    document->SetBookmark(1, "mine");
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n1\tmine\n2\ttheirs\n");
    document->SetBookmark(3, "mine too");
    EXPECT_EQ(InFile(), (Bookmarks{{1, "mine"}, {2, "theirs"}, {3, "mine too"}}));
    EXPECT_EQ(document->GetBookmarks(), InFile());
}

TEST_F(BookmarksOfADocument, OfOneSampleAreThoseOfTheLastWhoWroteThem) {
    const auto document = Open();
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n1\ttheirs\n2\ttheirs too\n");
    document->SetBookmark(1, "mine");
    EXPECT_EQ(InFile(), (Bookmarks{{1, "mine"}, {2, "theirs too"}}));
}

/// Each program reads the file, changes it and replaces it, all in the same moment.
TEST_F(BookmarksOfADocument, ThatTwoProgramsWriteAtOnceAreAllKept) {
    constexpr std::size_t each = 100;
    const auto document = Open();
    const auto write = [&](int first) {
        CaptureBookmarks own(prompts);
        own.Open(dir.File("a.tra"));
        bool good = true;
        for (std::size_t i = 0; i < each; ++i) {
            good = own.Change({{first + 2 * static_cast<int>(i), "note"}}) && good;
        }
        return good;
    };
    const pid_t child = ::fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        ::_exit(write(0) ? 0 : 1);
    }
    EXPECT_TRUE(write(1));
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(InFile().size(), 2 * each);
}

TEST_F(BookmarksOfADocument, AreChangedAlthoughAnotherProgramKeepsTheFolderLocked) {
    const auto document = Open();
    const int folder = ::open(dir.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(folder, LOCK_EX), 0);
    EXPECT_TRUE(document->SetBookmark(1, "mine"));
    ::close(folder);
    EXPECT_EQ(InFile(), (Bookmarks{{1, "mine"}}));
}

TEST_F(BookmarksOfADocument, AreTheSameUnderEachNameOfTheCapture) {
    std::filesystem::create_symlink("a.tra", dir.File("link.tra"));
    const auto document = Open("link.tra");
    document->SetBookmark(1, "by the link");
    EXPECT_EQ(Open()->GetBookmarks(), (Bookmarks{{1, "by the link"}}));
    EXPECT_FALSE(std::filesystem::exists(dir.File("link.tra.bookmarks")));
}

TEST_F(BookmarksOfADocument, InAFileThatIsNotUnderstoodAreShownButNotChanged) {
    const std::string content = "Busquill bookmarks 1\n-2\tfirst\nno number\n4\tlast\n";
    dir.Write("a.tra.bookmarks", content);
    const auto document = Open();
    const std::string path = dir.File("a.tra.bookmarks");
    const std::string why = "Line 3: A line begins with the number of a sample and a tab.";
    EXPECT_EQ(prompts.Texts(),
              std::vector{path +
                          "\nThe bookmarks are shown as far as they are understood. They "
                          "cannot be changed.\n" +
                          why});
    EXPECT_EQ(document->GetBookmarks(), (Bookmarks{{-2, "first"}, {4, "last"}}));
    prompts.Forget();
    EXPECT_FALSE(document->SetBookmark(1, "new"));
    EXPECT_EQ(prompts.Texts(), std::vector{path + "\nThe bookmarks cannot be changed.\n" + why});
    EXPECT_EQ(ReadWholeFile(path), content);
    EXPECT_EQ(document->GetBookmarks().size(), 2U);
    // A copy does not get a part of them, and keeps what is beside it.
    prompts.Forget();
    dir.Write("b.tra.bookmarks", "Busquill bookmarks 1\n3\tof b\n");
    ASSERT_TRUE(Save(*document, "b.tra"));
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{3, "of b"}}));
    EXPECT_EQ(prompts.Texts(), std::vector{dir.File("b.tra.bookmarks") +
                                           "\nNot all bookmarks of the capture are understood, so "
                                           "none were written to this file."});
    EXPECT_EQ(ReadWholeFile(path), content);
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n-2\tfirst\n"); // repaired by hand
    EXPECT_TRUE(document->SetBookmark(1, "new"));
    EXPECT_EQ(InFile(), (Bookmarks{{-2, "first"}, {1, "new"}}));
}

TEST_F(BookmarksOfADocument, ThatCannotBeWrittenAreReportedAndNotShown) {
    const auto document = Open();
    document->SetBookmark(1, "kept");
    std::filesystem::remove_all(dir.Path());
    EXPECT_FALSE(document->SetBookmark(2, "new"));
    EXPECT_EQ(prompts.Texts(), std::vector{"The bookmarks cannot be written to " +
                                           dir.File("a.tra.bookmarks") + "."});
    EXPECT_EQ(document->GetBookmarks(), (Bookmarks{{1, "kept"}}));
}

TEST_F(BookmarksOfADocument, GoWithACopyOfIt) {
    dir.Write("b.tra.bookmarks", "Busquill bookmarks 1\n0\tof the capture before\n");
    const auto document = Open();
    document->SetBookmark(1, "mine");
    ASSERT_TRUE(Save(*document, "b.tra"));
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{1, "mine"}}));
    document->SetBookmark(2, "later");
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{1, "mine"}})) << "the window still shows the first file";
    EXPECT_EQ(InFile().size(), 2U);
}

TEST_F(BookmarksOfADocument, OfAnotherCaptureAreNotLeftBesideACopyWithout) {
    dir.Write("b.tra.bookmarks", "Busquill bookmarks 1\n0\tof the capture before\n");
    const auto document = Open();
    refuses = true;
    EXPECT_FALSE(Save(*document, "b.tra"));
    EXPECT_EQ(InFile("b.tra").size(), 1U) << "nothing was saved";
    refuses = false;
    ASSERT_TRUE(Save(*document, "b.tra"));
    EXPECT_FALSE(std::filesystem::exists(dir.File("b.tra.bookmarks")));
}

TEST_F(BookmarksOfADocument, AreNotWrittenOverAFileThatIsNotUnderstood) {
    dir.Write("b.tra.bookmarks", "my own notes\n");
    const auto document = Open();
    document->SetBookmark(1, "mine");
    ASSERT_TRUE(Save(*document, "b.tra"));
    EXPECT_EQ(ReadWholeFile(dir.File("b.tra.bookmarks")), "my own notes\n");
    EXPECT_EQ(prompts.Texts(),
              std::vector{dir.File("b.tra.bookmarks") +
                          "\nThe bookmarks in this file are not understood, so it was left as it "
                          "is.\nLine 1: A file of bookmarks begins with \"Busquill bookmarks "
                          "1\"."});
}

TEST_F(BookmarksOfADocument, SavedOverItselfStayAsTheyAre) {
    const auto document = Open();
    document->SetBookmark(1, "mine");
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n1\tmine\n2\ttheirs\n");
    ASSERT_TRUE(Save(*document, "a.tra"));
    EXPECT_EQ(InFile(), (Bookmarks{{1, "mine"}, {2, "theirs"}}));
}

TEST_F(BookmarksOfADocument, SavedOverItselfUnderAnotherNameStayAsTheyAre) {
    std::filesystem::create_symlink("a.tra", dir.File("link.tra"));
    const auto document = Open();
    document->SetBookmark(1, "mine");
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n1\tmine\n2\ttheirs\n");
    for (const char* name : {"link.tra", "./a.tra"}) {
        ASSERT_TRUE(Save(*document, name));
        EXPECT_EQ(InFile(), (Bookmarks{{1, "mine"}, {2, "theirs"}})) << name;
    }
    EXPECT_TRUE(replaced.empty());
}

TEST_F(BookmarksOfADocument, WhoseFileIsReplacedAreShownButMixWithNoOthers) {
    std::filesystem::copy_file(dir.File("a.tra"), dir.File("b.tra"));
    const auto document = Open();
    document->SetBookmark(1, "of a");
    const auto other = Open("b.tra");
    other->SetBookmark(2, "of b");
    ASSERT_TRUE(Save(*document, "b.tra"));
    ASSERT_EQ(replaced, std::vector{dir.File("b.tra")});
    other->OnFileReplaced(); // as its windows do
    EXPECT_FALSE(other->IsModified());
    other->RenewBookmarks(); // after a change in a window of the new file
    EXPECT_EQ(other->GetBookmarks(), (Bookmarks{{2, "of b"}}));
    EXPECT_FALSE(other->SetBookmark(3, "more"));
    EXPECT_EQ(prompts.Texts(),
              std::vector{dir.File("b.tra.bookmarks") +
                          "\nThe bookmarks cannot be changed, because another capture has been "
                          "saved to the file of this one. Save this one to another file, and open "
                          "that."});
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{1, "of a"}}));
    ASSERT_TRUE(Save(*other, "c.tra"));
    EXPECT_EQ(InFile("c.tra"), (Bookmarks{{2, "of b"}}));
    ASSERT_TRUE(Save(*other, "b.tra")); // over the one that took its place
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{2, "of b"}}));
    EXPECT_TRUE(other->SetBookmark(3, "more"));
    EXPECT_EQ(InFile("b.tra"), (Bookmarks{{2, "of b"}, {3, "more"}}));
}

TEST_F(BookmarksOfADocument, OfALiveCaptureWhoseFileIsReplacedAreToBeSavedAgain) {
    context.newDocRealTime = true;
    CTesselDoc live(context, prompts);
    ASSERT_TRUE(live.OnNewDocument());
    live.SetBookmark(2, "live");
    ASSERT_TRUE(Save(live, "live.tra"));
    dir.Write("live.tra.bookmarks", "Busquill bookmarks 1\n1\tof another one\n");
    live.OnFileReplaced();
    EXPECT_TRUE(live.IsModified());
    EXPECT_EQ(live.GetPathName(), "") << "Save would replace the other one";
    EXPECT_FALSE(live.SetBookmark(3, "not there"));
    ASSERT_TRUE(Save(live, "again.tra"));
    EXPECT_FALSE(live.IsModified());
    EXPECT_TRUE(live.SetBookmark(3, "more"));
    EXPECT_EQ(InFile("again.tra"), (Bookmarks{{2, "live"}, {3, "more"}}));
    EXPECT_EQ(InFile("live.tra"), (Bookmarks{{1, "of another one"}}));
}

TEST_F(BookmarksOfADocument, WithoutAFileAreKeptInMemoryUntilItIsSaved) {
    context.newDocRealTime = true;
    CTesselDoc live(context, prompts);
    ASSERT_TRUE(live.OnNewDocument());
    live.RebuildMaps(5, 5);
    live.SetModifiedFlag(false);
    EXPECT_TRUE(live.SetBookmark(2, "live"));
    EXPECT_TRUE(live.IsModified()) << "else the note would be lost without a word";
    EXPECT_TRUE(written.empty());
    ASSERT_TRUE(Save(live, "live.tra"));
    EXPECT_FALSE(live.IsModified());
    EXPECT_EQ(InFile("live.tra"), (Bookmarks{{2, "live"}}));
    EXPECT_TRUE(live.SetBookmark(3, "saved"));
    EXPECT_FALSE(live.IsModified());
    EXPECT_EQ(InFile("live.tra").size(), 2U);
}

TEST_F(BookmarksOfADocument, ThatCouldNotBeSavedAreNotForgottenByTheNextChange) {
    context.newDocRealTime = true;
    CTesselDoc live(context, prompts);
    ASSERT_TRUE(live.OnNewDocument());
    live.SetBookmark(2, "live");
    dir.Write("live.tra.bookmarks", "my own notes\n");
    ASSERT_TRUE(Save(live, "live.tra"));
    EXPECT_TRUE(live.IsModified()) << "else the note would be lost without a word";
    std::filesystem::remove(dir.File("live.tra.bookmarks"));
    live.RenewBookmarks(); // after a change in another window of the file
    EXPECT_EQ(live.GetBookmarks(), (Bookmarks{{2, "live"}}));
    EXPECT_TRUE(live.SetBookmark(3, "next"));
    EXPECT_EQ(InFile("live.tra"), (Bookmarks{{2, "live"}, {3, "next"}}));
}

TEST_F(BookmarksOfADocument, HaveNeighboursAmongItsSamples) {
    dir.Write("a.tra.bookmarks", "Busquill bookmarks 1\n-9\t\n-5\t\n0\t\n5\t\n6\t\n");
    const auto document = Open();
    EXPECT_EQ(document->BookmarkBeside(-100, true), -5);
    EXPECT_EQ(document->BookmarkBeside(-5, true), 0);
    EXPECT_EQ(document->BookmarkBeside(1, true), 5);
    EXPECT_EQ(document->BookmarkBeside(5, true), std::nullopt);
    EXPECT_EQ(document->BookmarkBeside(100, false), 5);
    EXPECT_EQ(document->BookmarkBeside(5, false), 0);
    EXPECT_EQ(document->BookmarkBeside(-1, false), -5);
    EXPECT_EQ(document->BookmarkBeside(-5, false), std::nullopt);
    document->GoToBookmark(6);
    EXPECT_EQ(document->LastBookmark(), std::nullopt) << "the capture has no such sample";
    document->GoToBookmark(5);
    EXPECT_EQ(document->LastBookmark(), 5);
}

TEST_F(BookmarksOfADocument, HaveALimit) {
    std::string text = "Busquill bookmarks 1\n";
    for (std::size_t i = 0; i < mostBookmarks; ++i) {
        text += std::to_string(i) + "\t\n";
    }
    dir.Write("a.tra.bookmarks", text);
    const auto document = Open();
    EXPECT_FALSE(document->SetBookmark(-1, "one more"));
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"A capture can have at most 10000 bookmarks."});
    EXPECT_TRUE(document->SetBookmark(0, "changed"));
    prompts.Forget();
    EXPECT_FALSE(document->SetBookmark(1, std::string(longestNote + 1, 'a')));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"A note can have at most 4096 bytes."});
    EXPECT_EQ(ReadWholeFile(dir.File("a.tra.bookmarks")).size(), text.size() + 7);
}

} // namespace
} // namespace busquill::test
