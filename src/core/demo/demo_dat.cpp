#include "core/demo/demo_dat.h"

#include <pugixml.hpp>
#include <sstream>

#include "core/identify/rom_hash.h"

namespace romsteward {

namespace {

void AddGame(pugi::xml_node datafile, const std::string& name, std::uint64_t size,
             const std::string& crc, const std::string& sha1) {
  pugi::xml_node game = datafile.append_child("game");
  game.append_attribute("name") = name.c_str();
  game.append_child("description").text() = name.c_str();
  pugi::xml_node rom = game.append_child("rom");
  rom.append_attribute("name") = (name + ".bin").c_str();
  rom.append_attribute("size") = static_cast<unsigned long long>(size);
  if (!crc.empty()) rom.append_attribute("crc") = crc.c_str();
  if (!sha1.empty()) rom.append_attribute("sha1") = sha1.c_str();
}

}  // namespace

std::string BuildDemoDat(const std::vector<DemoDatGame>& games) {
  pugi::xml_document document;
  pugi::xml_node datafile = document.append_child("datafile");
  pugi::xml_node header = datafile.append_child("header");
  header.append_child("name").text() = "Genesis Romsteward demo";
  header.append_child("description").text() = "Made-up games of the demo collection";
  header.append_child("version").text() = "1";
  for (const DemoDatGame& game : games) {
    RomHasher hasher;
    hasher.Update(game.logical);
    const RomHashes hashes = hasher.Finish();
    AddGame(datafile, game.name, hashes.size, game.crc ? Crc32Text(hashes.crc32) : "",
            game.sha1 ? hashes.sha1 : "");
  }
  AddGame(datafile, "Lost Harbor (Europe)", 131072, "5eed5eed",
          "0123456789abcdef0123456789abcdef01234567");
  // A damaged entry: identification goes on without it and says so.
  AddGame(datafile, "Torn Label (World)", 131072, "not-a-crc", "");
  std::ostringstream text;
  document.save(text, "  ");
  return text.str();
}

}  // namespace romsteward
