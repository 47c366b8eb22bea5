#include <Orvo/Exchange/ExchangeError.h>

#include <utility>

namespace Orvo::Exchange {
namespace {

std::string PlaceOf(const std::string& file, std::uint64_t line, std::uint64_t column) {
  return line == 0 ? file + ": "
                   : file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": ";
}

}  // namespace

ExchangeError::ExchangeError(const std::string& message) : std::runtime_error(message) {}
ExchangeError::ExchangeError(const ExchangeError&) = default;
ExchangeError::~ExchangeError() = default;

ReadError::ReadError(std::string file, std::uint64_t line, std::uint64_t column,
                     std::string message)
    : ExchangeError(PlaceOf(file, line, column) + message),
      file_(std::move(file)),
      line_(line),
      column_(column),
      message_(std::move(message)) {}

ReadError::ReadError(const ReadError&) = default;
ReadError::~ReadError() = default;

}  // namespace Orvo::Exchange
