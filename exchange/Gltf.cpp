#include "exchange/ByteSink.h"
#include "exchange/GltfScene.h"

#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/Gltf.h>

#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

namespace Orvo::Exchange {
namespace {

constexpr std::uint32_t GlbMark = 0x46546C67;
constexpr std::uint32_t GlbVersion = 2;
constexpr std::uint32_t JsonChunk = 0x4E4F534A;
constexpr std::uint32_t BinaryChunk = 0x004E4942;

constexpr std::string_view DataUri = "data:application/octet-stream;base64,";

void WriteWords(std::initializer_list<std::uint32_t> words, std::ostream& out) {
  BinarySink sink(&out, BinarySink::Form::Plain);
  for (const std::uint32_t word : words) {
    sink.Integer(word);
  }
  sink.Finish();
}

std::string PercentEncoded(const std::string& text) {
  static constexpr char Digits[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') ||
                         std::string_view("-._~/").find(c) != std::string_view::npos;
    if (isPlain) {
      out += c;
    } else {
      out += '%';
      out += Digits[byte >> 4U];
      out += Digits[byte & 0xFU];
    }
  }
  return out;
}

}  // namespace

void WriteGlb(const Kin::Machine& machine, std::ostream& out, const GltfOptions& options) {
  const GltfScene scene(machine, options);
  std::string text = scene.MakeText(std::string());
  text.append((4 - text.size() % 4) % 4, ' ');
  const std::uint64_t binarySize = scene.GetBinarySize();
  const std::uint64_t size = 20 + text.size() + (binarySize == 0 ? 0 : 8 + binarySize);
  if (size > LargestSize) {
    throw ExchangeError("the file would have 4 GiB or more, which glTF can't hold");
  }
  WriteWords({GlbMark, GlbVersion, static_cast<std::uint32_t>(size),
              static_cast<std::uint32_t>(text.size()), JsonChunk},
             out);
  WriteBytes(text, out);
  if (binarySize > 0) {
    WriteWords({static_cast<std::uint32_t>(binarySize), BinaryChunk}, out);
    scene.WriteBinary(out, BinarySink::Form::Plain);
  }
  FinishStream(out);
}

void WriteGltf(const Kin::Machine& machine, std::ostream& out, const GltfOptions& options) {
  const GltfScene scene(machine, options);
  const std::string text = scene.MakeText(std::string(DataUri));
  // The bytes go in front of the quote that ends the last text of all.
  const std::size_t end = scene.GetBinarySize() == 0 ? text.size() : text.rfind('"');
  WriteBytes(std::string_view(text).substr(0, end), out);
  scene.WriteBinary(out, BinarySink::Form::Base64);
  WriteBytes(std::string_view(text).substr(end), out);
  FinishStream(out);
}

void WriteGltf(const Kin::Machine& machine, std::ostream& out, std::ostream& bin,
               const std::string& bufferUri, const GltfOptions& options) {
  const GltfScene scene(machine, options);
  WriteBytes(scene.MakeText(PercentEncoded(bufferUri)), out);
  FinishStream(out);
  scene.WriteBinary(bin, BinarySink::Form::Plain);
  FinishStream(bin);
}

void WriteGltfFile(const Kin::Machine& machine, const std::filesystem::path& file,
                   const GltfOptions& options) {
  FileSink sink(file);
  if (file.extension() == ".glb") {
    WriteGlb(machine, sink.Stream(), options);
  } else {
    std::filesystem::path bin = file;
    bin.replace_extension(".bin");
    FileSink binSink(bin);
    WriteGltf(machine, sink.Stream(), binSink.Stream(), NameOf(bin.filename()), options);
    binSink.Finish();
  }
  sink.Finish();
}

}  // namespace Orvo::Exchange
