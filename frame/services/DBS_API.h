#pragma once
// Answer of the result database to a stored record.

#include <string>

namespace Quorin {
namespace DBS_API {

struct CreateSesult {
    bool success = false;
    int id = -1;
    std::string message;
};

}  // namespace DBS_API
}  // namespace Quorin
