#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>

namespace NSTambraPacking {

/// Memory for one work that a later such work takes over, since fresh pages cost as much as the
/// coding. Works inside each other and on other threads have rooms of their own. A room's contents
/// are arbitrary.
template <class Room>
class CSpareRoom {
 public:
  CSpareRoom() : fRoom(Spares().Take()) {}
  ~CSpareRoom() { Spares().GiveBack(std::move(fRoom)); }
  CSpareRoom(const CSpareRoom&) = delete;
  CSpareRoom& operator=(const CSpareRoom&) = delete;

  Room& operator*() const { return *fRoom; }
  Room* operator->() const { return fRoom.get(); }

 private:
  /// The rooms that nobody uses; the last one given back is the first one taken, since it is most
  /// likely still in the processor's cache. Not one for each thread by thread_local: g++ for
  /// Windows frees the place of such an object before it is destroyed.
  class CSpares {
   public:
    std::unique_ptr<Room> Take() {
      const std::scoped_lock lock(fMutex);
      return fCount > 0 ? std::move(fRooms[--fCount]) : std::make_unique_for_overwrite<Room>();
    }
    /// With the list full the room is freed.
    void GiveBack(std::unique_ptr<Room> room) noexcept {
      const std::scoped_lock lock(fMutex);
      if (fCount < fRooms.size()) fRooms[fCount++] = std::move(room);
    }

   private:
    std::mutex fMutex;
    std::array<std::unique_ptr<Room>, 64> fRooms;
    std::size_t fCount = 0;
  };

  static CSpares& Spares() {
    static CSpares spares;
    return spares;
  }

  std::unique_ptr<Room> fRoom;
};

}  // namespace NSTambraPacking
