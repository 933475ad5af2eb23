#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::server {

/// The command line without the program's name, in UTF-8.
std::vector<std::string> commandLine(int argc, char** argv);

/// The folder of this program. Empty if the system doesn't tell.
std::filesystem::path programFolder();

/// The path for a text in UTF-8. Not all systems have paths in UTF-8.
std::filesystem::path pathFromUtf8(std::string_view text);
/// The reverse.
std::string utf8FromPath(const std::filesystem::path& path);

/// True if listening needs SO_REUSEADDR to ignore old connections. On Windows that option would let two servers share
/// a port.
bool mustReusePorts();
/// Raises the limit of open files to `wanted`, if allowed, and returns the limit.
std::size_t provideDescriptors(std::size_t wanted);

/// Ignores the signals of failed writes, so that the failing call returns an error: the game continues if nobody reads
/// the log any more, or if it may not grow.
void ignoreFatalSignals();
/// Keeps clicks into a console of Windows from selecting text until the program ends. A program that prints there while
/// text is selected would stand still.
void ignoreConsoleClicks();
/// The signals that ask the server to stop. Windows sends events instead, which become such signals after this call.
/// `withTerminal` adds the one of a terminal that is closed, unless it is ignored.
std::vector<int> stopSignals(bool withTerminal);
/// The signal that asks the server to read its files again, if the system has one. A closed terminal sends it, too.
std::optional<int> rereadSignal();
std::string signalName(int signal);
/// Ignores all further signals, which could only make a clean exit fail.
void ignoreFurtherSignals();

/// True if standard error goes to the journal, which records the time by itself.
bool isLoggingToJournal();

}  // namespace kelvora::server
