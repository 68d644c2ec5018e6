// SPDX-License-Identifier: Apache-2.0

// The parts of spdlog that the log uses, compiled once.
#include <spdlog/common-inl.h>
#include <spdlog/details/file_helper-inl.h>
#include <spdlog/details/log_msg-inl.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/details/os-inl.h>
#include <spdlog/pattern_formatter-inl.h>
#include <spdlog/sinks/base_sink-inl.h>
#include <spdlog/sinks/rotating_file_sink-inl.h>
#include <spdlog/sinks/sink-inl.h>

template class spdlog::sinks::base_sink<spdlog::details::null_mutex>;
template class spdlog::sinks::rotating_file_sink<spdlog::details::null_mutex>;
