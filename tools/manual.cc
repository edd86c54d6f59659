// Writes the documentation that HELP shows in the forms that are read elsewhere.
//   usage: tpu_manual markdown | attributes | page1 | page7
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <string>

#include "app/options.h"
#include "attribute_page.h"
#include "commands/help.h"
#include "editor/editor.h"
#include "editor/version.h"
#include "help_blocks.h"

namespace tpu {

namespace {

// Puts a backslash before what Markdown would take for its own.
std::string markdown_text(const std::string& line) {
    std::string text;
    for (char c : line) {
        if (std::strchr("\\`*_<>[]#", c)) text += '\\';
        text += c;
    }
    return text;
}

std::string roff_text(const std::string& line) {
    std::string text;
    if (line.starts_with('.') || line.starts_with('\'')) text = "\\&";
    for (char c : line) {
        if (c == '\\') {
            text += "\\e";
        } else if (c == '-') {
            text += "\\-";
        } else {
            text += c;
        }
    }
    return text;
}

// A line of prose; manual pages begin each sentence on a line of its own.
std::string roff_prose(const std::string& line) {
    std::string text;
    std::size_t begin = 0;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        bool ends = std::strchr(".?!", line[i]) && line[i + 1] == ' ';
        if (!ends) continue;
        text += roff_text(line.substr(begin, i + 1 - begin)) + '\n';
        begin = i + 2;
    }
    return text + roff_text(line.substr(begin));
}

std::string markdown() {
    std::string text =
        "# Reference\n\n"
        "What HELP says on each topic. This file is made from the program's own tables by\n"
        "`script/manual`.\n";
    for (const std::string& topic : help_topics()) {
        if (topic == "OVERVIEW") continue;
        text += "\n## " + topic + "\n";
        for (const HelpBlock& block : help_blocks(help_text(topic))) {
            text += block.literal ? "\n```\n" : "\n";
            for (const std::string& line : block.lines) {
                text += (block.literal ? line : markdown_text(line)) + '\n';
            }
            if (block.literal) text += "```\n";
        }
    }
    return text;
}

std::string roff_blocks(const std::string& help) {
    std::string text;
    bool first = true;
    for (const HelpBlock& block : help_blocks(help)) {
        if (block.literal) {
            text += ".Bd -literal\n";
        } else if (!first) {
            text += ".Pp\n";
        }
        for (const std::string& line : block.lines) {
            text += (block.literal ? roff_text(line) : roff_prose(line)) + '\n';
        }
        if (block.literal) text += ".Ed\n";
        first = false;
    }
    return text;
}

// The day of the release as manual pages write it: July 17, 2026.
std::string release_day() {
    std::tm day = {};
    std::istringstream(kReleaseDate) >> std::get_time(&day, "%Y-%m-%d");
    std::ostringstream text;
    text << std::put_time(&day, "%B ") << day.tm_mday << std::put_time(&day, ", %Y");
    return text.str();
}

std::string page_head(const char* section, const char* description) {
    return ".Dd " + release_day() + "\n.Dt TPU " + section + "\n.Os\n.Sh NAME\n.Nm tpu\n.Nd " +
           description + "\n";
}

std::string topic_section(const std::string& topic) {
    return ".Sh " + topic + "\n" + roff_blocks(help_text(topic));
}

// The program.
std::string page1() {
    return page_head("1", "full-screen text editor programmed in TPU") +
           ".Sh SYNOPSIS\n"
           ".Nm\n.Op Ar option ...\n.Op Cm + Ns Ar line\n.Op Ar file\n"
           ".Nm\n.Fl -test Ar script\n"
           ".Sh DESCRIPTION\n"
           ".Nm\nedits a file on the whole screen of a terminal.\n"
           "What its keys and commands do is described below, and by the command HELP in the\n"
           "editor; the language in which it is programmed, in\n.Xr tpu 7 .\n"
           "There is no question at the end: what is not saved is lost.\n"
           ".Pp\n" +
           roff_blocks(kUsage) +
           ".Pp\nWith\n.Fl -test\nthe script runs without a terminal; what its assertions\n"
           "found is printed, and errors are written to standard error as FILE:LINE: text.\n" +
           topic_section("KEYS") + topic_section("COMMANDS") +
           ".Sh ENVIRONMENT\n"
           ".Bl -tag -width TPU_STARTUP\n"
           ".It Ev TPU_STARTUP\nThe start-up file, in place of\n.Pa ~/.tpurc .\n"
           ".It Ev TPU_RECOVERY\nKeeps no unsaved work when it is\n.Cm off .\n"
           ".It Ev XDG_STATE_HOME\nWhere unsaved work is kept, in place of\n.Pa ~/.local/state .\n"
           ".It Ev HOME\nWhere the start-up file is looked for.\n"
           ".It Ev LC_ALL , LC_CTYPE , LANG\nWhether texts are shown as UTF-8 or as bytes.\n"
           ".It Ev TERM\nThe kind of terminal.\n"
           ".El\n"
           ".Sh FILES\n"
           ".Bl -tag -width ~/.tpurc\n"
           ".It Pa ~/.tpurc\nTPU source that runs when the editor starts.\n"
           ".It Pa ~/.local/state/tpu/recovery\nUnsaved work of sessions that died.\n"
           ".It Pa FILE.bak\nThe text that a file had before it was saved.\n"
           ".El\n"
           ".Sh EXIT STATUS\n"
           "0, or what the statement EXIT was given.\n"
           "With\n.Fl -test ,\n1 when an assertion failed and 2 when the script cannot be read.\n"
           ".Sh SEE ALSO\n.Xr tpu 7\n";
}

// The language.
std::string page7() {
    std::string text = page_head("7", "the language of the editor");
    text +=
        ".Sh DESCRIPTION\n"
        "This page has what the editor's HELP says on the language and on what its\n"
        "built\\-in procedures act on.\n";
    for (const std::string& topic : help_topics()) {
        if (topic == "OVERVIEW" || topic == "KEYS" || topic == "COMMANDS") continue;
        text += topic_section(topic);
    }
    return text + ".Sh SEE ALSO\n.Xr tpu 1\n";
}

}  // namespace

}  // namespace tpu

int main(int argc, char** argv) {
    std::string_view form = argc == 2 ? argv[1] : "";
    std::string text = form == "markdown"     ? tpu::markdown()
                       : form == "attributes" ? tpu::attribute_page()
                       : form == "page1"      ? tpu::page1()
                       : form == "page7"      ? tpu::page7()
                                              : "";
    std::fputs(text.c_str(), stdout);
    return text.empty() || std::fflush(stdout) != 0;
}
