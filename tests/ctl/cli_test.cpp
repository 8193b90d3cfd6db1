// What the commands of kelprobectl have in common.
#include "tests/support/temp_directory.h"
#include "tools/ctl/cli/command_model.h"
#include "tools/ctl/cli/output_file.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Prints the standard output of a shell command.
std::string outputOf(const std::string& command)
{
    FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    for (int c = 0; (c = fgetc(pipe)) != EOF;)
        text += static_cast<char>(c);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return text;
}

class Generated : public testing::Test {
protected:
    Generated()
    {
        app_.set_version_flag("--version", "1");
        CLI::App* const list = app_.add_subcommand("list", "Show [all]: the user's devices");
        list->add_flag("--json", flag_, "Print JSON");
        list->footer("Example: kelprobectl list \\ .\n'quoted'");
        CLI::App* const convert = app_.add_subcommand("convert", "Convert it");
        convert->add_option("FILE", unused_, "A recording")->required();
        convert->add_option("-p,--pcap", unused_, "The capture")->type_name("FILE");
        CLI::App* const trace = app_.add_subcommand("trace", "Trace it");
        trace->add_option("--press", unused_, "A command")->type_name("CMD");
        trace->add_option("--time", unused_, "A time");
        trace->add_option("PROGRAM", program_, "The program");
        app_.add_subcommand("help", "Help")->add_option("COMMAND", unused_);
        app_.add_subcommand("internal", "Not for users")->group("");
    }

    std::string write(const std::string& name, const std::string& text)
    {
        EXPECT_EQ(text.find("internal"), std::string::npos);
        return directory_.file(name, text);
    }

    // What the shell offers for the last of these words, one in brackets after the other.
    std::string offered(const std::string& words)
    {
        const std::string file = write("bash", ctl::bashCompletion(ctl::modelOf(app_)));
        return outputOf("cd " + directory_.path() + " && PATH=" + directory_.path()
            + "bin:$PATH bash -c 'source " + file + "; COMP_WORDS=(" + words
            + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kelprobectl; "
              "((${#COMPREPLY[@]})) && printf \"[%s]\" \"${COMPREPLY[@]}\"; true'");
    }

    const test::TempDirectory directory_;
    CLI::App app_{"Description", "kelprobectl"};
    std::string unused_;
    std::vector<std::string> program_;
    bool flag_ = false;
};

TEST_F(Generated, BashCompletesWhatCanStandThere)
{
    directory_.file("my recording", "");
    std::filesystem::create_directory(directory_.path() + "bin");
    const std::string program = directory_.file("bin/zz-program", "");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    for (const auto& [words, expected] : std::vector<std::pair<std::string, std::string>>{
             {R"(kelprobectl "")", "[list][convert][trace][help][-h][--help][--version]"},
             {"kelprobectl li", "[list]"},
             {"kelprobectl help tr", "[trace]"},
             {"kelprobectl list --", "[--help][--json]"},
             {"kelprobectl convert my", "[my recording]"},
             {"kelprobectl convert --p", "[--pcap]"},
             {"kelprobectl convert --pcap my", "[my recording]"},
             {"kelprobectl convert --pcap = my", "[my recording]"},
             {"kelprobectl trace --press zz-", "[zz-program]"},
             {R"(kelprobectl trace --time "")", ""},
             {"kelprobectl trace -- zz-", "[zz-program]"},
             {"kelprobectl trace -- zz-program my", "[my recording]"},
             {"kelprobectl trace --t", "[--time]"},
         })
        EXPECT_EQ(offered(words), expected) << words;
}

TEST_F(Generated, FishCompletesWhatCanStandThere)
{
    if (std::system("command -v fish >/dev/null"))
        GTEST_SKIP() << "fish is not installed";
    directory_.file("my recording", "");
    const std::string file = write("fish", ctl::fishCompletion(ctl::modelOf(app_)));
    const std::string start = "cd " + directory_.path() + " && HOME=" + directory_.path()
        + " fish -c 'source " + file + R"(; complete -C"kelprobectl )";
    for (const auto& [line, expected] : std::vector<std::pair<std::string, std::string>>{
             {"li", "list\tShow [all]: the user's devices\n"},
             {"help tr", "trace\n"},
             {"convert --pcap my", "my recording\n"},
             {"convert my", "my recording\n"},
             {"trace -- cat my", "my recording\n"},
         })
        EXPECT_EQ(outputOf(start + line + "\"'"), expected) << line;
}

TEST_F(Generated, OtherShellsAndManCanReadTheirs)
{
    const ctl::CommandModel model = ctl::modelOf(app_);
    const std::string zsh = write("zsh", ctl::zshCompletion(model));
    const std::string fish = write("fish", ctl::fishCompletion(model));
    outputOf("! command -v zsh >/dev/null || zsh -n " + zsh);
    outputOf("! command -v fish >/dev/null || fish -n " + fish);
    EXPECT_NE(test::content(zsh).find(R"('list:Show \[all\]\: the user'\''s devices')"),
        std::string::npos);
    EXPECT_NE(test::content(fish).find("-s p -l pcap -r -F -d 'The capture'"), std::string::npos);
    const std::string man = ctl::manPage(model);
    for (const char* const text : {"\\fBkelprobectl convert\\fR [\\fIOPTION\\fR...] \\fIFILE\\fR\n",
             "\\fB\\-p\\fR, \\fB\\-\\-pcap\\fR \\fIFILE\\fR\n", "list \\e .\n\\&'quoted'\n"})
        EXPECT_NE(man.find(text), std::string::npos) << text << man;
}

TEST(OutputFile, AppearsWhenItIsComplete)
{
    const test::TempDirectory directory;
    const std::string path = directory.file("result", "old");
    {
        ctl::OutputFile file(path);
        file.write("new");
        EXPECT_EQ(test::content(path), "old");
    }
    EXPECT_EQ(
        test::filesIn(directory.path()), (std::map<std::string, std::string>{{"result", "old"}}));
    ctl::OutputFile file(path);
    file.write("ne");
    file.write("w");
    file.finish();
    EXPECT_EQ(
        test::filesIn(directory.path()), (std::map<std::string, std::string>{{"result", "new"}}));
}

TEST(OutputFile, HasNoNameBeforeItIsComplete)
{
    const test::TempDirectory directory;
    const int fd = open(directory.path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (fd < 0)
        GTEST_SKIP() << "the file system has no files without a name";
    close(fd);
    ctl::OutputFile file(directory.path() + "result");
    file.write("text");
    EXPECT_EQ(test::filesIn(directory.path()).size(), 0u) << "kill -9 would leave it";
    file.finish();
    EXPECT_EQ(
        test::filesIn(directory.path()), (std::map<std::string, std::string>{{"result", "text"}}));
}

TEST(OutputFile, WritesTheTargetOfALink)
{
    const test::TempDirectory directory;
    std::filesystem::create_directory(directory.path() + "d");
    for (const auto& [link, target] :
        {std::pair{"to-new", "d/new"}, {"to-old", "d/old"}, {"to-link", "to-old"}})
        std::filesystem::create_symlink(target, directory.path() + link);
    directory.file("d/old", "old");
    for (const auto& [link, target] :
        {std::pair{"to-new", "d/new"}, {"to-old", "d/old"}, {"to-link", "d/old"}}) {
        ctl::OutputFile file(directory.path() + link);
        file.write(link);
        file.finish();
        EXPECT_TRUE(std::filesystem::is_symlink(directory.path() + link));
        EXPECT_EQ(test::content(directory.path() + target), link);
    }
    std::filesystem::create_symlink("loop", directory.path() + "loop");
    EXPECT_THROW(ctl::OutputFile(directory.path() + "loop"), ctl::Failure);
}

TEST(OutputFile, NamesTheFileThatCannotBeWritten)
{
    const test::TempDirectory directory;
    const auto failure = [](const std::string& path) -> std::string {
        try {
            ctl::OutputFile file(path);
            file.write("text");
            file.finish();
        } catch (const ctl::Failure& caught) {
            EXPECT_EQ(caught.status, ctl::kNoAccess);
            return caught.what();
        }
        return "none";
    };
    EXPECT_EQ(failure("/dev/null"), "none");
    EXPECT_EQ(failure("/dev/full"), "/dev/full: No space left on device");
    EXPECT_EQ(
        failure(directory.path() + "a/b"), directory.path() + "a/b: No such file or directory");
    EXPECT_EQ(failure(directory.path()), directory.path() + ": Is a directory");
}

} // namespace
