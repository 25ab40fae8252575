#include "cad/editor/CommandLine.h"

#include <gtest/gtest.h>

#include "host/CommandFlags.h"
#include "host/EditorReactor.h"
#include "host/Format.h"

using namespace veltarn;
using editor::CommandLine;
using host::PromptStatus;
namespace flags = host::CommandFlags;

namespace {

// Records the notifications, one line each.
class LogReactor : public host::EditorReactor {
public:
    explicit LogReactor(std::wstring& log) : log_(log) {}
    void commandWillStart(const std::wstring& c) override { log_ += L"start " + c + L"\n"; }
    void commandEnded(const std::wstring& c) override { log_ += L"ended " + c + L"\n"; }
    void commandCancelled(const std::wstring& c) override { log_ += L"cancelled " + c + L"\n"; }
    void commandFailed(const std::wstring& c) override { log_ += L"failed " + c + L"\n"; }

private:
    std::wstring& log_;
};

std::wstring statusText(PromptStatus s) {
    switch (s) {
        case PromptStatus::kNormal: return L"normal";
        case PromptStatus::kNone: return L"none";
        case PromptStatus::kCancel: return L"cancel";
        case PromptStatus::kError: return L"error";
    }
    return L"?";
}

class CommandLineTest : public ::testing::Test {
protected:
    CommandLineTest() {
        // ASK asks as the module does: a name with spaces, then a one-word option.
        add(L"ASK", flags::kUsePickSet | flags::kRedraw, [this] {
            std::wstring name, mode;
            PromptStatus s = line_.getString(L"Object: ", true, name);
            if (s != PromptStatus::kNormal) return line_.print(L"[" + statusText(s) + L"]\n");
            s = line_.getString(L"Mode [0/1]<0>: ", false, mode);
            line_.print(L"[" + name + L"|" + mode + L"|" + statusText(s) + L"]\n");
        });
    }

    void add(const std::wstring& name, int commandFlags, host::CommandHandler handler) {
        registry_.addCommand(L"TEST", name, name, commandFlags, std::move(handler));
    }
    std::wstring run(const std::wstring& input) {
        transcript_.clear();
        line_.input().append(input);
        line_.run();
        return transcript_;
    }

    editor::CommandRegistry registry_;
    editor::SystemVariableTable variables_;
    std::wstring transcript_;
    CommandLine line_{registry_, variables_, [this](const std::wstring& text) { transcript_ += text; }};
};

TEST_F(CommandLineTest, promptsWithAndWithoutSpacesAndEnterReadLikeACommandLine) {
    EXPECT_EQ(run(L"ask Big Road\n1 trailing\n"),
              L"Command: ask\nObject: Big Road\nMode [0/1]<0>: 1\n[Big Road|1|normal]\n"
              L"Command: trailing\nUnknown command \"TRAILING\".\n");
    EXPECT_EQ(run(L"ASK\n\n\n"), L"Command: ASK\nObject: \nMode [0/1]<0>: \n[||normal]\n");
    // Input that ends inside a command ends the prompt with an error, not a hang.
    EXPECT_EQ(run(L"ask x"), L"Command: ask\nObject: x\nMode [0/1]<0>: [x||error]\n");
}

TEST_F(CommandLineTest, enterAtTheCommandPromptRepeatsTheLastCommandStartedThere) {
    EXPECT_EQ(run(L"\n"), L"Command: \n");  // nothing to repeat yet
    EXPECT_EQ(run(L"ask a\n1\n\nb\n0\n"),
              L"Command: ask\nObject: a\nMode [0/1]<0>: 1\n[a|1|normal]\n"
              L"Command: ASK\nObject: b\nMode [0/1]<0>: 0\n[b|0|normal]\n");
    // A variable shown, an unknown name or a transparent command run inside a prompt is not a
    // command started at the prompt: Enter still repeats ASK.
    EXPECT_EQ(run(L"CMDNAMES\nnothing\n\n'GETVAR\nCMDNAMES\nc\n\x03"),
              L"Command: CMDNAMES\nCMDNAMES = \"\" (read only)\n"
              L"Command: nothing\nUnknown command \"NOTHING\".\n"
              L"Command: ASK\nObject: 'GETVAR\nEnter variable name: CMDNAMES\n\"ASK'GETVAR\"\nObject: c\nMode [0/1]<0>: *Cancel*\n[c||cancel]\n");
}

TEST_F(CommandLineTest, cancelEndsThePromptAndTheCommandIsReportedCancelled) {
    std::wstring log;
    LogReactor reactor(log);
    line_.addReactor(&reactor);
    EXPECT_EQ(run(L"ask\n\x03" L"ask road\nEsc\n"),
              L"Command: ask\nObject: *Cancel*\n[cancel]\n"
              L"Command: ask\nObject: road\nMode [0/1]<0>: *Cancel*\n[road||cancel]\n");
    EXPECT_EQ(log, L"start ASK\ncancelled ASK\nstart ASK\ncancelled ASK\n");
    line_.removeReactor(&reactor);
}

TEST_F(CommandLineTest, aPaletteLineAnswersTheCommandsPromptsInOrder) {
    std::wstring answers;
    add(L"VELTARN_SEL_ALL", 70, [&] {
        for (const wchar_t* prompt : {L"Use properties? [0/1]<1>: ", L"Use objects? [0/1]<1>: ", L"Match [0/1]<1>: "}) {
            std::wstring a;
            line_.getString(prompt, false, a);
            answers += a;
        }
    });
    run(L"veltarn_sel_all 1 0 1\n");
    EXPECT_EQ(answers, L"101");
    EXPECT_EQ(transcript_, L"Command: veltarn_sel_all\nUse properties? [0/1]<1>: 1\nUse objects? [0/1]<1>: 0\n"
                           L"Match [0/1]<1>: 1\n");
}

TEST_F(CommandLineTest, stringsSentByACommandRunAfterItAndBeforeFurtherInput) {
    add(L"SEND", 0, [this] {
        line_.sendString(L"ask queued one\n");
        line_.sendString(L"0\n");
        std::wstring a;
        line_.getString(L"Typed: ", true, a);  // answered by the typed input, not the queue
    });
    EXPECT_EQ(run(L"send typed answer\nask typed two\n1\n"),
              L"Command: send\nTyped: typed answer\n"
              L"Command: ask\nObject: queued one\nMode [0/1]<0>: 0\n[queued one|0|normal]\n"
              L"Command: ask\nObject: typed two\nMode [0/1]<0>: 1\n[typed two|1|normal]\n");
}

TEST_F(CommandLineTest, nestedCommandsShowInCmdnamesAndTakeTheirArgumentsFromTheCaller) {
    std::wstring seen;
    add(L"-INNER", 0, [&] {
        seen += variables_.get(L"cmdnames")->text;
        host::Point3d p;
        std::wstring a;
        line_.getPoint(L"Point: ", nullptr, p);
        line_.getString(L"Name: ", false, a);
        seen += host::format(L" %g,%g %s", p.x, p.y, a);
    });
    PromptStatus nested = PromptStatus::kError;
    add(L"OUTER", 0, [&] {
        host::ResultBuffer tokens = {{0, std::wstring(L"_.-inner")}, {0, host::Point3d{1, 2, 0}}, {0, std::wstring(L"\\")}};
        nested = line_.command(tokens);  // the backslash hands the name prompt to the user
    });
    run(L"outer typed\n");
    EXPECT_EQ(seen, L"OUTER'-INNER 1,2 typed");
    EXPECT_EQ(nested, PromptStatus::kNormal);
    EXPECT_EQ(variables_.get(L"CMDNAMES")->text, L"");

    // CMDECHO 0 keeps the nested command's prompts out of the transcript.
    variables_.set(L"CMDECHO", host::VariableValue::ofShort(0));
    seen.clear();
    run(L"outer quiet\n");
    EXPECT_EQ(transcript_, L"Command: outer\n");
}

TEST_F(CommandLineTest, transparentCommandsAndVariablesRunInsideAPromptWhichIsAskedAgain) {
    EXPECT_EQ(run(L"ask 'cmdnames\n'getvar luprec\nroad\n0\n"),
              L"Command: ask\nObject: 'cmdnames\nCMDNAMES = \"ASK\" (read only)\n"
              L"Object: 'getvar luprec\n"  // a prompt with spaces reads "'getvar luprec" whole
              L"Mode [0/1]<0>: road\n['getvar luprec|road|normal]\n"
              L"Command: 0\nUnknown command \"0\".\n");
    EXPECT_EQ(run(L"ask\n'getvar\nluprec\nroad\n1\n"),
              L"Command: ask\nObject: 'getvar\nEnter variable name: luprec\n4\n"
              L"Object: road\nMode [0/1]<0>: 1\n[road|1|normal]\n");
    EXPECT_EQ(run(L"ask road 'luprec 3\n"),
              L"Command: ask\nObject: road 'luprec 3\nMode [0/1]<0>: [road 'luprec 3||error]\n");
    EXPECT_EQ(run(L"ask road\n'luprec 3 1\n"),
              L"Command: ask\nObject: road\nMode [0/1]<0>: 'luprec\nEnter new value for LUPREC <4>: 3\n"
              L"Mode [0/1]<0>: 1\n[road|1|normal]\n");
}

TEST_F(CommandLineTest, variablesAreReadAndSetByGetvarSetvarAndByTheirName) {
    EXPECT_EQ(run(L"setvar sortents 96\ngetvar SORTENTS\n"),
              L"Command: setvar\nEnter variable name: sortents\nEnter new value for SORTENTS <127>: 96\n"
              L"Command: getvar\nEnter variable name: SORTENTS\n96\n");
    EXPECT_EQ(run(L"cmdecho 5\ncmdecho\n\nclayer Road Works\n"),
              L"Command: cmdecho\nEnter new value for CMDECHO <1>: 5\nInvalid value for CMDECHO.\n"
              L"Command: cmdecho\nEnter new value for CMDECHO <1>: \n"
              L"Command: clayer\nEnter new value for CLAYER <\"0\">: Road Works\n");
    EXPECT_EQ(variables_.get(L"CLAYER")->text, L"Road Works");
    EXPECT_EQ(run(L"dwgname\ngetvar nosuch\n"),
              L"Command: dwgname\nDWGNAME = \"Drawing1.dxf\" (read only)\n"
              L"Command: getvar\nEnter variable name: nosuch\nUnknown variable name \"NOSUCH\".\n");
}

TEST_F(CommandLineTest, aModelSpaceOnlyCommandIsRefusedInALayout) {
    int runs = 0;
    add(L"VELTARN_CLASSIFY", 70, [&] { ++runs; });
    variables_.set(L"TILEMODE", host::VariableValue::ofShort(0));
    EXPECT_EQ(run(L"veltarn_classify\n"), L"Command: veltarn_classify\nCommand not allowed in a layout: VELTARN_CLASSIFY\n");
    EXPECT_EQ(runs, 0);
    variables_.set(L"TILEMODE", host::VariableValue::ofShort(1));
    run(L"veltarn_classify\n");
    EXPECT_EQ(runs, 1);
}

TEST_F(CommandLineTest, thePickFirstSetIsKeptOrClearedByTheCommandFlags) {
    const std::vector<host::ObjectId> chosen = {{0x2A}, {0x2B}};
    std::vector<host::ObjectId> seen;
    add(L"KEEPS", flags::kUsePickSet | flags::kRedraw, [&] {
        seen.clear();
        line_.select(host::SelectionMode::kImplied, seen);
        line_.setPickFirst({chosen[1]});
    });
    add(L"PLAIN", 0, [&] {
        seen.clear();
        line_.select(host::SelectionMode::kImplied, seen);
    });
    line_.setPickFirst(chosen);
    run(L"keeps\n");
    EXPECT_EQ(seen, chosen);
    EXPECT_EQ(line_.pickFirst(), std::vector<host::ObjectId>{chosen[1]});  // the command's own set stays
    run(L"plain\n");
    EXPECT_TRUE(seen.empty());  // a command without the pick-set flag never sees it
    EXPECT_TRUE(line_.pickFirst().empty());
}

TEST_F(CommandLineTest, reactorsMayDetachWhileTheyAreToldAndAThrowingCommandFails) {
    std::wstring log;
    LogReactor first(log), second(log);
    // Detaches itself and the second reactor at the end of a command, as the draw catcher does.
    struct Detacher : host::EditorReactor {
        CommandLine* line;
        host::EditorReactor* other;
        void commandEnded(const std::wstring&) override {
            line->removeReactor(this);
            line->removeReactor(other);
        }
    } detacher;
    detacher.line = &line_;
    detacher.other = &second;
    line_.addReactor(&first);
    line_.addReactor(&detacher);
    line_.addReactor(&second);
    add(L"THROWS", 0, [] { throw 6; });
    run(L"ask a\nb\nthrows\n");
    EXPECT_EQ(log, L"start ASK\nstart ASK\nended ASK\nstart THROWS\nfailed THROWS\n");
    line_.removeReactor(&first);
}

TEST_F(CommandLineTest, numberPointAndKeywordPromptsAskAgainUntilTheAnswerFits) {
    std::wstring results;
    add(L"NUMBERS", 0, [&] {
        int i = 0;
        double r = 0;
        host::Point3d p;
        std::wstring k;
        PromptStatus s1 = line_.getInteger(L"Integer: ", i);
        PromptStatus s2 = line_.getReal(L"Real: ", r);
        PromptStatus s3 = line_.getPoint(L"Point: ", nullptr, p);
        PromptStatus s4 = line_.getKeyword(L"Option [Yes/No/Nothing]: ", {L"Yes", L"No", L"Nothing"}, k);
        results = host::format(L"%i %g %g,%g,%g %s %s %s %s %s", i, r, p.x, p.y, p.z, k, statusText(s1), statusText(s2),
                               statusText(s3), statusText(s4));
    });
    run(L"numbers 1.5 7 x 2.5 1;2 1,2 n no\n");
    EXPECT_EQ(results, L"7 2.5 1,2,0 No normal normal normal normal");
    EXPECT_NE(transcript_.find(L"Requires an integer.\n"), std::wstring::npos);
    EXPECT_NE(transcript_.find(L"Requires a number.\n"), std::wstring::npos);
    EXPECT_NE(transcript_.find(L"Requires a point.\n"), std::wstring::npos);
    EXPECT_NE(transcript_.find(L"Option [Yes/No/Nothing]: n\nInvalid option keyword.\nOption [Yes/No/Nothing]: no\n"),
              std::wstring::npos);
    run(L"numbers\n\n\n\n\n");
    EXPECT_EQ(results, L"0 0 0,0,0  none none none none");
}

}  // namespace
