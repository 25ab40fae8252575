// The module's own dialogs asked on the command line: the prompts users' scripts answer, word for word.
#include "module/ModuleDialogs.h"

#include <gtest/gtest.h>

#include "cad/editor/CommandLine.h"
#include "module/ModuleState.h"

using namespace veltarn;

namespace {

class ModuleDialogsTest : public ::testing::Test {
protected:
    void type(const std::wstring& text) {
        transcript_.clear();
        line_.input().append(text);
    }

    editor::CommandRegistry registry_;
    editor::SystemVariableTable variables_;
    std::wstring transcript_;
    editor::CommandLine line_{registry_, variables_, [this](const std::wstring& t) { transcript_ += t; }};
    PromptDialogs dialogs_{line_};
};

TEST_F(ModuleDialogsTest, classificationParametersAskOnlyTheEnabledBoxes) {
    ClassificationParameters p;
    type(L"0\n0\n");
    ASSERT_TRUE(dialogs_.classificationParameters(p));
    EXPECT_EQ(transcript_, L"Assign graphical properties [0/1]<1>: 0\nAttach OD [0/1]<1>: 0\n");
    EXPECT_FALSE(p.assignGraphicalProperties);
    EXPECT_FALSE(p.attachObjectData);
    EXPECT_TRUE(p.changeObject);  // not asked while attach is off: kept as it was

    type(L"\n7\n0\n-2\n");
    ASSERT_TRUE(dialogs_.classificationParameters(p));
    EXPECT_EQ(transcript_, L"Assign graphical properties [0/1]<0>: \nAttach OD [0/1]<0>: 7\n"
                           L"Change object [0/1]<1>: 0\nDefine field OD [0/1]<1>: -2\n");
    EXPECT_FALSE(p.assignGraphicalProperties);
    EXPECT_TRUE(p.attachObjectData);
    EXPECT_FALSE(p.changeObject);
    EXPECT_FALSE(p.defineFieldValues);

    const ClassificationParameters before = p;
    type(L"1\nEsc\n");
    EXPECT_FALSE(dialogs_.classificationParameters(p));
    EXPECT_EQ(p.assignGraphicalProperties, before.assignGraphicalProperties);  // cancel changes nothing
}

TEST_F(ModuleDialogsTest, removeChoosesSomeOrAllNamesInTheirOrder) {
    std::vector<std::wstring> chosen;
    type(L"0\n1\n0\n1\n");
    ASSERT_TRUE(dialogs_.chooseForRemoval({L"Road", L"River", L"Rail"}, chosen));
    EXPECT_EQ(chosen, (std::vector<std::wstring>{L"Road", L"Rail"}));
    EXPECT_EQ(transcript_, L"Select All [0/1]<0>: 0\nRemove Road? [0/1]<0>: 1\nRemove River? [0/1]<0>: 0\n"
                           L"Remove Rail? [0/1]<0>: 1\n");
    type(L"1\n");
    ASSERT_TRUE(dialogs_.chooseForRemoval({L"Road", L"River"}, chosen));
    EXPECT_EQ(chosen.size(), 2u);
    type(L"0\n\x03");
    EXPECT_FALSE(dialogs_.chooseForRemoval({L"Road"}, chosen));
    EXPECT_EQ(chosen.size(), 2u);
}

// Without windows a command gets the prompts; a front end's own dialogs take their place.
TEST_F(ModuleDialogsTest, commandsGetTheWindowDialogsWhenAFrontEndGaveThem) {
    struct Accepting : ModuleDialogs {
        bool classificationParameters(ClassificationParameters&) override { return true; }
        bool chooseForRemoval(const std::vector<std::wstring>& names, std::vector<std::wstring>& chosen) override {
            chosen = names;
            return true;
        }
    };
    ModuleState state;
    ModuleDialogs& prompts = moduleDialogs(state, line_);
    EXPECT_NE(dynamic_cast<PromptDialogs*>(&prompts), nullptr);
    EXPECT_EQ(&moduleDialogs(state, line_), &prompts);  // made once
    state.windowDialogs = std::make_unique<Accepting>();
    std::vector<std::wstring> chosen;
    type(L"");
    EXPECT_TRUE(moduleDialogs(state, line_).chooseForRemoval({L"Road"}, chosen));
    EXPECT_EQ(chosen, std::vector<std::wstring>{L"Road"});
    EXPECT_EQ(transcript_, L"") << "no prompt when the window answered";
}

}  // namespace
