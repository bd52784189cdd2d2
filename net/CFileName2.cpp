#include "net/CFileName2.h"

namespace Vask {

namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr std::string_view kUncStart = "\\\\";

bool IsSeparator(char c) {
  return kSeparators.find(c) != std::string_view::npos;
}

// Server and share of a UNC path, without the backslash behind the share.
std::string_view UncRoot(std::string_view path) {
  const std::size_t afterServer = path.find('\\', kUncStart.size());
  if (afterServer == std::string_view::npos) return {};
  return path.substr(0, path.find('\\', afterServer + 1));
}

std::string_view DrivePart(std::string_view path) {
  return path.size() > 1 && path[1] == ':' ? path.substr(0, 2) : std::string_view();
}

bool CanHoldFolders(Platform::DriveKind drive) {
  return drive == Platform::DriveKind::Removable || drive == Platform::DriveKind::Fixed ||
         drive == Platform::DriveKind::Remote || drive == Platform::DriveKind::RamDisk;
}

// Adds a backslash to the root, because "C:" alone means the current folder of that
// drive.
Platform::DriveKind DriveOf(const CFileName2& root, Platform::Files& files) {
  char withBackslash[CFileName2::kMaxLength + 2] = {};
  const std::string_view text = root.Text();
  text.copy(withBackslash, text.size());
  withBackslash[text.size()] = '\\';
  return files.Drive(withBackslash);
}

}  // namespace

CFileName2::CFileName2(std::string_view path) : m_path() {
  if (path.size() <= kMaxLength) path.copy(m_path, path.size());
}

CFileName2 CFileName2::Root() const {
  const bool isUnc = View().starts_with(kUncStart);
  return CFileName2(isUnc ? UncRoot(View()) : DrivePart(View())).WithoutTrailingBackslash();
}

CFileName2 CFileName2::Parent() const {
  const std::size_t last = View().find_last_of(kSeparators);
  if (last == std::string_view::npos) return CFileName2(DrivePart(View()));
  return CFileName2(View().substr(0, last + 1));
}

CFileName2 CFileName2::WithoutTrailingBackslash() const {
  std::string_view path = View();
  if (!path.empty() && IsSeparator(path.back())) path.remove_suffix(1);
  return CFileName2(path);
}

bool CFileName2::CreateFolders(const char* path, Platform::Files& files) {
  if (files.IsFolder(path)) return true;
  const CFileName2 folder = CFileName2(path).WithoutTrailingBackslash();
  if (folder.Empty() || !CanHoldFolders(DriveOf(folder.Root(), files))) return false;
  const CFileName2 parent = folder.Parent();
  if (!parent.Empty() && !files.IsFolder(parent.Text()) && !CreateFolders(parent.Text(), files)) {
    return false;
  }
  return files.CreateFolder(folder.Text());
}

}  // namespace Vask
