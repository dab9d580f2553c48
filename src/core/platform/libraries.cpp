#include "platform/libraries.h"

#include <archive.h>
#include <libusb.h>

namespace busquill {

std::vector<std::string> Libraries() {
    const libusb_version& usb = *libusb_get_version();
    return {"libusb " + std::to_string(usb.major) + "." + std::to_string(usb.minor) + "." +
                std::to_string(usb.micro),
            archive_version_string()};
}

} // namespace busquill
