// The error trap: the message of each error number, the silent ones, and the pointer.
#include <gtest/gtest.h>

#include <filesystem>

#include "session/mdlErrTrap.h"
#include "state/ProcessState.h"
#include "support/MorvaneTest.h"
#include "util/RuntimeError.h"

namespace morvane::test {
namespace {

class ErrTrapTest : public MorvaneTest {
protected:
    void Raise(std::int32_t number, const std::string& description) {
        CaptureError(std::make_exception_ptr(RuntimeError(number, description, "Morvane.Test")));
    }
};

// No error only resets the pointer, a silent error not even that.
TEST_F(ErrTrapTest, ShowsNumberAndTextUnderTheSourceAndSilentErrorsNothing) {
    ErrTrap();
    EXPECT_EQ(kit_->PointerResets(), 1);
    Raise(32755, "cancelled");
    ErrTrap();
    EXPECT_TRUE(kit_->Boxes().empty());
    EXPECT_EQ(kit_->PointerResets(), 1);
    Raise(53, "File not found");
    ErrTrap();
    ASSERT_EQ(kit_->Boxes().size(), 1u);
    EXPECT_EQ(kit_->Boxes()[0].text, "53\r\nファイルが見つかりません。");
    EXPECT_EQ(kit_->Boxes()[0].title, "Morvane.Test");
    EXPECT_EQ(kit_->Boxes()[0].icon, forms::MsgIcon::Exclamation);
    EXPECT_FALSE(State().err.IsSet());
    EXPECT_EQ(kit_->PointerResets(), 2);
}

TEST_F(ErrTrapTest, MessagesByNumberShareTextsAndAddTheDescriptionWhereTheyShouldOnly) {
    EXPECT_EQ(ErrTrapMessage(52, "x"), ErrTrapMessage(64, "y"));
    EXPECT_EQ(ErrTrapMessage(64, ""), "ファイル名が正しくありません。");
    EXPECT_EQ(ErrTrapMessage(20477, "パス X"),
              "パス X\r\nファイル名、ディレクトリが正しいか確認して下さい。");
    EXPECT_EQ(ErrTrapMessage(3146, "database is locked"), "database is locked");
}

TEST_F(ErrTrapTest, ForeignExceptionsGetNumbers) {
    const auto numberOf = [](auto e) {
        return PendingError::From(std::make_exception_ptr(e)).number;
    };
    const auto fsError = [](std::errc code) {
        return std::filesystem::filesystem_error("open", std::make_error_code(code));
    };
    EXPECT_EQ(numberOf(std::bad_alloc()), 7);
    EXPECT_EQ(numberOf(fsError(std::errc::no_such_file_or_directory)), 53);
    EXPECT_EQ(numberOf(fsError(std::errc::no_space_on_device)), 57);
    EXPECT_EQ(numberOf(std::runtime_error("odd")), 5);
}

}  // namespace
}  // namespace morvane::test
