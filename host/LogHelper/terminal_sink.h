#pragma once

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

namespace LogHelper {

// Standard error, unbuffered. Its user keeps it to one thread at a time.
class TerminalSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
protected:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;
};

}  // namespace LogHelper
