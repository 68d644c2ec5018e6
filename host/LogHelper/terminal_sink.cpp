#include "host/LogHelper/terminal_sink.h"

#include "host/LogHelper/log_system.h"

namespace LogHelper {

void TerminalSink::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    WriteToStandardError({line.data(), line.size()});
}

void TerminalSink::flush_() {}

}  // namespace LogHelper
