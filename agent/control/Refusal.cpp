#include "agent/control/Refusal.h"

#include <new>

#include "agent/process/DriverLibrary.h"
#include "platform/mox/GenericIf.h"
#include "platform/mox/RangeException.h"
#include "text/FileError.h"

namespace Kest::Agent {

namespace {

using Wire::ErrorKind;

/// The kind of error that the client is told when generic access refuses.
ErrorKind kindOf(Mox::GenericAccessException const& refused) {
  using Reason = Mox::GenericAccessException::Kind;
  switch (refused.kind()) {
    case Reason::noSuchAttribute:
      return ErrorKind::path;
    case Reason::type:
    case Reason::unknownArg:
      return ErrorKind::value;
    case Reason::constInstance:
    case Reason::badIndex:
    case Reason::opNotSupported:
    case Reason::notBound:
      break;
  }
  return ErrorKind::refused;
}

}  // namespace

ControlError currentRefusal() {
  try {
    throw;
  } catch (ControlError const& refused) {
    return refused;
  } catch (Mox::GenericAccessException const& refused) {
    return {kindOf(refused), refused.what()};
  } catch (Mox::RangeException const& refused) {
    return {ErrorKind::value, refused.what()};
  } catch (Text::FileError const& refused) {
    return {ErrorKind::file, refused.what()};
  } catch (DriverError const& refused) {
    return {ErrorKind::refused, refused.what()};
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& failed) {
    return {ErrorKind::internal, failed.what()};
  }
}

}  // namespace Kest::Agent
