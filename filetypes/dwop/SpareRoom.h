#pragma once

#include <memory>
#include <utility>

namespace NSTambraPacking {

/// Memory for one work that the next such work of the thread takes over, since fresh pages cost as
/// much as the coding. Works inside each other have rooms of their own. A room's contents are
/// arbitrary.
template <class Room>
class CThreadRoom {
 public:
  CThreadRoom() : fRoom(Spare() ? std::move(Spare()) : std::make_unique_for_overwrite<Room>()) {}
  ~CThreadRoom() { Spare() = std::move(fRoom); }
  CThreadRoom(const CThreadRoom&) = delete;
  CThreadRoom& operator=(const CThreadRoom&) = delete;

  Room& operator*() const { return *fRoom; }
  Room* operator->() const { return fRoom.get(); }

 private:
  static std::unique_ptr<Room>& Spare() {
    thread_local std::unique_ptr<Room> spare;
    return spare;
  }

  std::unique_ptr<Room> fRoom;
};

}  // namespace NSTambraPacking
