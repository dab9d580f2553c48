#include "platform/text.h"
#include "platform/usb_device.h"
#include "platform/usb_match.h"

#include <libusb.h>

namespace busquill {

namespace {

std::vector<UsbSetting> SettingsOf(libusb_device* device) {
    std::vector<UsbSetting> settings;
    libusb_config_descriptor* config = nullptr;
    if (libusb_get_active_config_descriptor(device, &config) != 0) {
        return settings;
    }
    for (int i = 0; i < config->bNumInterfaces; ++i) {
        const libusb_interface& interface = config->interface[i];
        for (int a = 0; a < interface.num_altsetting; ++a) {
            const libusb_interface_descriptor& alternate = interface.altsetting[a];
            UsbSetting setting{alternate.bInterfaceNumber,
                               alternate.bAlternateSetting,
                               alternate.bInterfaceClass,
                               {}};
            for (int e = 0; e < alternate.bNumEndpoints; ++e) {
                const libusb_endpoint_descriptor& endpoint = alternate.endpoint[e];
                if ((endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK) ==
                    LIBUSB_TRANSFER_TYPE_BULK) {
                    setting.bulkEndpoints.push_back(endpoint.bEndpointAddress);
                }
            }
            settings.push_back(std::move(setting));
        }
    }
    libusb_free_config_descriptor(config);
    return settings;
}

class LibusbDevice final : public UsbDevice {
public:
    LibusbDevice(libusb_device_handle* handle, UsbSetting setting)
        : handle_(handle), setting_(std::move(setting)) {}
    ~LibusbDevice() override {
        libusb_release_interface(handle_, setting_.interface);
        libusb_close(handle_);
    }
    LibusbDevice(const LibusbDevice&) = delete;
    LibusbDevice& operator=(const LibusbDevice&) = delete;

    bool SelectInterface() override {
        libusb_set_auto_detach_kernel_driver(handle_, 1);
        return libusb_claim_interface(handle_, setting_.interface) == 0 &&
               libusb_set_interface_alt_setting(handle_, setting_.interface, setting_.alternate) ==
                   0;
    }
    bool ResetPipe(std::uint8_t endpoint) override {
        return libusb_clear_halt(handle_, endpoint) == 0;
    }
    Transfer Write(std::uint8_t endpoint, std::span<const std::uint8_t> bytes) override {
        return Move(endpoint, const_cast<std::uint8_t*>(bytes.data()), bytes.size());
    }
    Transfer Read(std::uint8_t endpoint, std::span<std::uint8_t> into) override {
        return Move(endpoint, into.data(), into.size());
    }

private:
    Transfer Move(std::uint8_t endpoint, std::uint8_t* bytes, std::size_t count) {
        int moved = 0;
        const int error =
            libusb_bulk_transfer(handle_, endpoint, bytes, static_cast<int>(count), &moved, 0);
        return {error == 0, error, static_cast<std::size_t>(moved)};
    }

    libusb_device_handle* handle_;
    UsbSetting setting_;
};

class LibusbBus final : public UsbBus {
public:
    LibusbBus() {
        if (libusb_init(&context_) != 0) {
            context_ = nullptr;
        }
    }
    ~LibusbBus() override {
        Forget();
        if (context_ != nullptr) {
            libusb_exit(context_);
        }
    }
    LibusbBus(const LibusbBus&) = delete;
    LibusbBus& operator=(const LibusbBus&) = delete;

    UsbSearch Find(const std::string& wanted) override {
        Forget();
        if (context_ == nullptr) {
            return {};
        }
        libusb_device** list = nullptr;
        const ssize_t count = libusb_get_device_list(context_, &list);
        UsbSearch search;
        for (ssize_t i = 0; i < count && found_ == nullptr; ++i) {
            Consider(list[i], wanted, search);
        }
        if (list != nullptr) {
            libusb_free_device_list(list, 1);
        }
        return search;
    }

    std::unique_ptr<UsbDevice> Open(const std::string& path) override {
        libusb_device_handle* handle = nullptr;
        if (found_ == nullptr || path != path_ || libusb_open(found_, &handle) != 0) {
            return nullptr;
        }
        return std::make_unique<LibusbDevice>(handle, setting_);
    }

private:
    void Consider(libusb_device* device, const std::string& wanted, UsbSearch& search) {
        libusb_device_descriptor descriptor{};
        if (const int error = libusb_get_device_descriptor(device, &descriptor); error != 0) {
            search = {UsbSearch::Outcome::DetailFailed, error, ""};
            return;
        }
        const auto setting = FindBoardSetting(SettingsOf(device));
        const bool fits = wanted.empty() ||
                          ParseUsbId(wanted) == UsbId{descriptor.idVendor, descriptor.idProduct};
        if (!setting || !fits) {
            return;
        }
        found_ = libusb_ref_device(device);
        setting_ = *setting;
        path_ = Printf("%d-%d", libusb_get_bus_number(device), libusb_get_device_address(device));
        search = {UsbSearch::Outcome::Found, 0, path_};
    }
    void Forget() {
        if (found_ != nullptr) {
            libusb_unref_device(found_);
            found_ = nullptr;
        }
    }

    libusb_context* context_ = nullptr;
    libusb_device* found_ = nullptr;
    UsbSetting setting_;
    std::string path_;
};

} // namespace

std::unique_ptr<UsbBus> OpenUsbBus() {
    return std::make_unique<LibusbBus>();
}

} // namespace busquill
