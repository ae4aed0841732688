#pragma once

#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/records.h"
#include "tests/support/soundrig.h"

namespace qv3::test {

/// Commands to the sound device without its alias ("seek to 5", "open tone5.wav", "open x as
/// mpegvideo", "save a.wav"), the items of `status` by their names, and what happens meanwhile
/// ("sleep MS", "hear SAMPLE MS" and the rest of `m_own`), with "; " between them. Behind a step
/// stands " = TEXT" for its answer, " !CODE" where it is refused, nothing for a plain success.
class SoundScript {
 public:
  /// The script as it went: equal to `script` if every answer was as expected there.
  std::string run(const std::string& script) {
    std::string went;
    for (std::size_t at = 0; at < script.size();) {
      const std::size_t end = std::min(script.find("; ", at), script.size());
      const std::string step = script.substr(at, end - at);
      const std::string asked = step.substr(0, std::min(step.find(" = "), step.find(" !")));
      went += (went.empty() ? "" : "; ") + asked + answer(asked);
      at = end + 2;
    }
    return went;
  }

  SoundRig rig;

 private:
  using Words = std::istringstream;
  using Step = std::function<std::string(Words&)>;

  std::string answer(const std::string& step) {
    Words words(step);
    std::string first;
    words >> first >> std::ws;
    if (const auto own = m_own.find(first); own != m_own.end()) {
      const std::string text = own->second(words);
      return text.empty() ? "" : " = " + text;
    }
    std::string rest;
    std::getline(words, rest);
    const MediaReply reply = rig.commands.send(command(first, rest));
    if (!reply.ok()) return " !" + std::to_string(reply.code);
    return reply.text.empty() || first == "open" ? "" : " = " + reply.text;
  }

  static std::string command(const std::string& first, const std::string& rest) {
    static const std::set<std::string> kVerbs = {"close",  "delete", "pause", "play", "record",
                                                 "resume", "save",   "seek",  "set",  "stop"};
    if (first == "open") {
      const std::size_t as = rest.find(" as ");
      const std::string type = as == std::string::npos ? "waveaudio" : rest.substr(as + 4);
      const std::string name = rest == "new" ? rest : "\"/s/" + rest.substr(0, as) + '"';
      return "open " + name + " type " + type + " alias WavFile";
    }
    if (first == "save" && !rest.starts_with('"')) return "save WavFile \"/s/" + rest + '"';
    return (kVerbs.count(first) > 0 ? first + " WavFile " : "status WavFile " + first + ' ') + rest;
  }

  template <typename Value>
  static Value next(Words& words) {
    Value value{};
    words >> value;
    return value;
  }
  const Bytes* file(Words& words) {
    const auto found = rig.files.contents.find("/s/" + next<std::string>(words));
    return found == rig.files.contents.end() ? nullptr : found->second.get();
  }
  /// The sound of a saved file at a byte of it.
  std::string sample(Words& words) {
    const Bytes* wav = file(words);
    const std::size_t at = kPcmHeaderSize + next<std::size_t>(words);
    if (!wav || at + 2 > wav->size()) return "none";
    return std::to_string(static_cast<std::int16_t>((*wav)[at] | (*wav)[at + 1] << 8));
  }
  /// What all bytes of a saved sound are.
  std::string all(Words& words) {
    const Bytes* wav = file(words);
    if (!wav || wav->size() <= kPcmHeaderSize) return "none";
    const bool same = std::adjacent_find(wav->begin() + kPcmHeaderSize, wav->end(),
                                         std::not_equal_to<>()) == wav->end();
    return same ? std::to_string(wav->back()) : "mixed";
  }
  std::string spool() {
    const auto place = rig.device.spool().value_or(SpoolPlace{});
    return place.path + ' ' + std::to_string(place.offset) + ' ' + std::to_string(place.length);
  }
  /// What happens, and answers nothing.
  static Step happens(std::function<void(Words&)> what) {
    return [what](Words& words) { return what(words), std::string(); };
  }

  const std::map<std::string, Step> m_own = {
      {"sleep", happens([this](auto& w) { rig.pass(next<int>(w)); })},
      {"hear", happens([this](auto& w) {
         const auto heard = next<std::int16_t>(w);
         rig.hear(heard, next<int>(w));
       })},
      {"arrive", happens([this](auto& w) {
         const auto heard = next<std::int16_t>(w);
         for (int left = next<int>(w); left > 0; left -= 20) rig.deliver(heard, 20);
       })},
      {"start", happens([this](auto&) { rig.startRecording(); })},
      {"setup", happens([this](auto&) { rig.send(SoundRig::kSet); })},
      {"bytes", happens([this](auto&) { rig.send("set WavFile time format bytes"); })},
      {"room", happens([this](auto& w) { rig.files.room = next<std::uint64_t>(w); })},
      {"spools", happens([this](auto& w) { rig.spoolPossible = next<int>(w) > 0; })},
      {"size",
       [this](auto& w) {
         const Bytes* bytes = file(w);
         return bytes ? std::to_string(bytes->size()) : "none";
       }},
      {"same",
       [this](auto& w) {
         const Bytes* one = file(w);
         const Bytes* other = file(w);
         return one && other && *one == *other ? "yes" : "no";
       }},
      {"sample", [this](auto& w) { return sample(w); }},
      {"header",
       [this](auto& w) {
         const Bytes* wav = file(w);
         return wav ? hexOf(std::span(*wav).first(std::min(kPcmHeaderSize, wav->size()))) : "none";
       }},
      {"all", [this](auto& w) { return all(w); }},
      {"spool", [this](auto&) { return spool(); }},
      {"failure", [this](auto&) { return rig.device.failure(); }},
      {"complete", [this](auto&) { return rig.device.isComplete() ? "yes" : "no"; }},
      {"streams", [this](auto&) { return rig.backend.playback ? "1" : "0"; }},
  };
};

}  // namespace qv3::test
