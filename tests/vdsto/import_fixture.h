#pragma once
#include <gtest/gtest.h>
#include <vips/vips.h>

#include <map>

#include "test_support.h"
#include "vdstomgr/vdstomgr.h"

namespace vdsto_test {

/// A library, a folder of pictures, and the program that brings one into the other.
class ImportTest : public testing::Test {
 protected:
  using json = nlohmann::json;

  static void SetUpTestSuite() {
    VIPS_INIT("test");
    vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  }

  std::string Library() const { return temp_ / "library"; }
  std::string Catalogue() const { return temp_ / "library/catalogue.vdb"; }
  std::string Store() const { return temp_ / "library/images.pdb"; }
  std::string Pictures(std::string_view name = "") const {
    return temp_ / ("pictures/" + std::string(name));
  }

  Outcome Vdsto(std::vector<std::string> arguments, std::string password = "") const {
    arguments.insert(arguments.begin(), {"--library", Library(), "--json"});
    return RunVdsto(std::move(arguments), std::move(password));
  }

  json Import(std::vector<std::string> folders) const {
    folders.insert(folders.begin(), "import");
    const Outcome outcome = Vdsto(std::move(folders));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.code == 0 ? outcome.Json() : json();
  }

  json Import() const { return Import({Pictures()}); }

  /// Every photo of the catalogue, by its original.
  std::map<std::string, json> Photos() const {
    std::map<std::string, json> photos;
    Collect("", photos);
    return photos;
  }

  /// Changes the row of the photo made from `original` behind the program's back.
  void EditPhoto(const std::string& original, const std::function<void(PHOTOINFO&)>& edit) const {
    const std::string guid = Photos().at(original)["guid"];
    CRkPhotoDBManager catalogue;
    PHOTOINFO photo;
    ASSERT_TRUE(catalogue.OpenDB(Catalogue().c_str(), ""));
    ASSERT_TRUE(catalogue.GetPhotoInfo(guid.c_str(), photo));
    edit(photo);
    EXPECT_TRUE(catalogue.SetPhotoInfo(photo, false));
  }

  static std::string Counts(const json& summary) {
    return summary["added"].dump() + " " + summary["updated"].dump() + " " +
           summary["unchanged"].dump();
  }

  TempFolder temp_;

 private:
  void Collect(const std::string& path, std::map<std::string, json>& photos) const {
    const json listing = Vdsto({"ls", path}).Json();
    for (const json& photo : listing["photos"]) {
      EXPECT_TRUE(photos.emplace(photo["original"].get<std::string>(), photo).second)
          << "twice: " << photo;
    }
    for (const json& folder : listing["folders"]) {
      Collect((path.empty() ? "" : path + "/") + folder["name"].get<std::string>(), photos);
    }
  }
};

}  // namespace vdsto_test
