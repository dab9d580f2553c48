#include "document/document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TestDoc final : public CDocument {
public:
    bool OnOpenDocument(const std::string&) override { return true; }
    bool OnSaveDocument(const std::string&) override { return true; }
};

struct Notification {
    DocumentView* sender;
    int hint;
    const HintObject* object;
    bool operator==(const Notification&) const = default;
};

struct RecordingView final : DocumentView {
    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override {
        received.push_back({sender, hint, object});
        if (whenTold) {
            whenTold();
        }
    }
    std::vector<Notification> received;
    std::function<void()> whenTold;
};

class DocumentViews : public testing::Test {
protected:
    void SetUp() override {
        for (RecordingView* view : {&first, &second, &third}) {
            doc.AddView(view);
        }
    }

    TestDoc doc;
    RecordingView first;
    RecordingView second;
    RecordingView third;
};

TEST_F(DocumentViews, AreAllNotifiedWithoutASender) {
    const HintObject object;
    doc.UpdateAllViews(nullptr, 8, &object);
    EXPECT_THAT(first.received, ElementsAre(Notification{nullptr, 8, &object}));
    EXPECT_THAT(second.received, ElementsAre(Notification{nullptr, 8, &object}));
    EXPECT_THAT(third.received, ElementsAre(Notification{nullptr, 8, &object}));
}

TEST_F(DocumentViews, AreNotifiedExceptTheSender) {
    doc.UpdateAllViews(&second, 3);
    EXPECT_THAT(first.received, ElementsAre(Notification{&second, 3, nullptr}));
    EXPECT_THAT(second.received, IsEmpty());
    EXPECT_THAT(third.received, ElementsAre(Notification{&second, 3, nullptr}));
}

TEST_F(DocumentViews, ReceiveHintZeroWithoutAnObjectByDefault) {
    doc.UpdateAllViews(nullptr);
    EXPECT_THAT(first.received, ElementsAre(Notification{nullptr, 0, nullptr}));
}

TEST_F(DocumentViews, AreNotifiedInTheOrderInWhichTheyWereAdded) {
    std::string order;
    first.whenTold = [&] { order += '1'; };
    second.whenTold = [&] { order += '2'; };
    third.whenTold = [&] { order += '3'; };
    doc.UpdateAllViews(nullptr);
    EXPECT_EQ(order, "123");
}

TEST_F(DocumentViews, AreNotNotifiedAfterTheirRemoval) {
    doc.RemoveView(&second);
    doc.RemoveView(&second);
    doc.UpdateAllViews(nullptr);
    EXPECT_THAT(second.received, IsEmpty());
    EXPECT_THAT(doc.Views(), ElementsAre(&first, &third));
}

TEST_F(DocumentViews, MayRemoveAnotherDuringANotification) {
    first.whenTold = [&] { doc.RemoveView(&second); };
    doc.UpdateAllViews(nullptr);
    EXPECT_THAT(second.received, IsEmpty());
    EXPECT_EQ(third.received.size(), 1U);
}

TEST_F(DocumentViews, MayRemoveAnEarlierOneDuringANotificationAndNoneIsSkipped) {
    second.whenTold = [&] { doc.RemoveView(&first); };
    doc.UpdateAllViews(nullptr);
    EXPECT_EQ(first.received.size(), 1U);
    EXPECT_EQ(third.received.size(), 1U);
}

TEST_F(DocumentViews, MayDeleteAnotherDuringANotification) {
    auto closing = std::make_unique<RecordingView>();
    doc.AddView(closing.get());
    first.whenTold = [&] {
        doc.RemoveView(closing.get());
        closing.reset();
    };
    doc.UpdateAllViews(nullptr);
    EXPECT_EQ(third.received.size(), 1U);
}

TEST_F(DocumentViews, MayRemoveThemselvesDuringANotification) {
    first.whenTold = [&] { doc.RemoveView(&first); };
    doc.UpdateAllViews(nullptr);
    doc.UpdateAllViews(nullptr);
    EXPECT_EQ(first.received.size(), 1U);
    EXPECT_EQ(second.received.size(), 2U);
}

TEST_F(DocumentViews, AddedDuringANotificationReceiveTheNextOne) {
    RecordingView late;
    bool added = false;
    first.whenTold = [&] {
        if (!added) {
            doc.AddView(&late);
            added = true;
        }
    };
    doc.UpdateAllViews(nullptr);
    EXPECT_THAT(late.received, IsEmpty());
    doc.UpdateAllViews(nullptr);
    EXPECT_EQ(late.received.size(), 1U);
}

TEST_F(DocumentViews, MayNotifyTheOthersDuringANotification) {
    first.whenTold = [&] { doc.UpdateAllViews(&first, 2); };
    doc.UpdateAllViews(nullptr, 1);
    EXPECT_THAT(second.received,
                ElementsAre(Notification{&first, 2, nullptr}, Notification{nullptr, 1, nullptr}));
}

TEST(Document, StartsWithoutPathTitleOrChanges) {
    const TestDoc doc;
    EXPECT_EQ(doc.GetPathName(), "");
    EXPECT_EQ(doc.GetTitle(), "");
    EXPECT_FALSE(doc.IsModified());
    EXPECT_THAT(doc.Views(), IsEmpty());
}

TEST(Document, KeepsPathTitleAndModifiedFlag) {
    TestDoc doc;
    doc.SetPathName("/data/capture.tra");
    doc.SetTitle("capture.tra");
    doc.SetModifiedFlag();
    EXPECT_EQ(doc.GetPathName(), "/data/capture.tra");
    EXPECT_EQ(doc.GetTitle(), "capture.tra");
    EXPECT_TRUE(doc.IsModified());
    doc.SetModifiedFlag(false);
    EXPECT_FALSE(doc.IsModified());
}

TEST(Document, CanBeCreatedWithoutAFile) {
    EXPECT_TRUE(TestDoc().OnNewDocument());
}

} // namespace
} // namespace busquill::test
