// The DLL as a host that loads it by hand finds it.
#define WIN32_LEAN_AND_MEAN
#define NOGDI
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

#include "pincel.h"

namespace {

// A copy under another name is a module of its own, whose entry point runs in the test.
class LoadedDll : public testing::Test {
 protected:
  void SetUp() override {
    char path[MAX_PATH];
    HMODULE linked = GetModuleHandleA("pincel.dll");
    ASSERT_NE(linked, nullptr);
    ASSERT_NE(GetModuleFileNameA(linked, path, sizeof(path)), 0u);
    copy_ = std::string(path) + "." + std::to_string(GetCurrentProcessId()) + ".dll";
    ASSERT_TRUE(CopyFileA(path, copy_.c_str(), FALSE));
    module_ = LoadLibraryA(copy_.c_str());
    ASSERT_NE(module_, nullptr) << "error " << GetLastError();
    ASSERT_NE(module_, linked);
  }
  void TearDown() override {
    if (module_ != nullptr) FreeLibrary(module_);
    DeleteFileA(copy_.c_str());
  }
  template <class Type>
  Type* Find(const char* name) {
    void* address = reinterpret_cast<void*>(GetProcAddress(module_, name));
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<Type*>(address);
  }

  std::string copy_;
  HMODULE module_ = nullptr;
};

TEST_F(LoadedDll, EntryPointFillsThePalette) {
  TRGBA* palette = Find<TRGBA>("lu_gPaleta");
  ASSERT_NE(palette, lu_gPaleta);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(std::memcmp(&palette[i], &lu_gPaleta[i], sizeof(TRGBA)), 0) << i;
  }
  EXPECT_EQ(palette[251].red, 255);
  EXPECT_EQ(palette[6].green, 42);
  EXPECT_EQ(palette[252].red, 0);
}

TEST_F(LoadedDll, FunctionsAreFoundByTheirMangledNames) {
  auto* width = Find<int(TSurfDesc&)>("_Z5WidthR9TSurfDesc");
  ASSERT_NE(width, nullptr);
  TSurfDesc surface{};
  surface.width = 640;
  EXPECT_EQ(width(surface), 640);
}

TEST_F(LoadedDll, CarriesAVersionResource) {
  EXPECT_NE(FindResourceA(module_, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(16)), nullptr);
}

}  // namespace
