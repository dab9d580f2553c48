#include "platform/text.h"
#include "platform/usb_search.h"

#include <algorithm>
#include <libusb.h>
#include <limits>

namespace busquill {

namespace {

// The link's time-outs cannot end a transfer, and its lock is held during one, so a silent board
// must not block for ever. The board's longest operation, a search, takes a minute.
constexpr unsigned transferLimitMs = 75'000;

struct ContextCloser {
    void operator()(libusb_context* context) const noexcept { libusb_exit(context); }
};
// Shared, since a device may outlive the bus that opened it.
using Context = std::shared_ptr<libusb_context>;

struct HandleCloser {
    void operator()(libusb_device_handle* handle) const noexcept { libusb_close(handle); }
};
using Handle = std::unique_ptr<libusb_device_handle, HandleCloser>;

struct ConfigFreer {
    void operator()(libusb_config_descriptor* config) const noexcept {
        libusb_free_config_descriptor(config);
    }
};
using Config = std::unique_ptr<libusb_config_descriptor, ConfigFreer>;

/// The devices that are present, released with the object; none when they cannot be listed.
class DeviceList {
public:
    explicit DeviceList(const Context& context) {
        const ssize_t count = libusb_get_device_list(context.get(), &list_);
        devices_ = {list_, count > 0 ? static_cast<std::size_t>(count) : 0};
    }
    ~DeviceList() {
        if (list_ != nullptr) {
            libusb_free_device_list(list_, 1);
        }
    }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    [[nodiscard]] auto begin() const { return devices_.begin(); }
    [[nodiscard]] auto end() const { return devices_.end(); }

private:
    libusb_device** list_ = nullptr;
    std::span<libusb_device*> devices_;
};

/// The path of a connected device; it changes each time the device is plugged in.
std::string PathOf(libusb_device* device) {
    return Printf("usb:%03d:%03d", libusb_get_bus_number(device),
                  libusb_get_device_address(device));
}

UsbInterface DescribeSetting(const libusb_interface_descriptor& descriptor) {
    UsbInterface setting;
    setting.number = descriptor.bInterfaceNumber;
    setting.alternate = descriptor.bAlternateSetting;
    setting.classCode = descriptor.bInterfaceClass;
    for (const libusb_endpoint_descriptor& endpoint :
         std::span(descriptor.endpoint, descriptor.bNumEndpoints)) {
        const bool bulk =
            (endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK) == LIBUSB_TRANSFER_TYPE_BULK;
        setting.endpoints.push_back({endpoint.bEndpointAddress, bulk});
    }
    return setting;
}

/// All alternate settings of all interfaces. Returns the library's error number.
int ReadInterfaces(libusb_device* device, std::vector<UsbInterface>& interfaces) {
    libusb_config_descriptor* raw = nullptr;
    int error = libusb_get_active_config_descriptor(device, &raw);
    if (error == LIBUSB_ERROR_NOT_FOUND) {
        error = libusb_get_config_descriptor(device, 0, &raw); // not configured yet
    }
    if (error != 0) {
        return error;
    }
    const Config config(raw);
    for (const libusb_interface& interface : std::span(config->interface, config->bNumInterfaces)) {
        for (const libusb_interface_descriptor& setting :
             std::span(interface.altsetting, static_cast<std::size_t>(interface.num_altsetting))) {
            interfaces.push_back(DescribeSetting(setting));
        }
    }
    return 0;
}

UsbDeviceInfo DescribeDevice(libusb_device* device) {
    UsbDeviceInfo info;
    info.path = PathOf(device);
    libusb_device_descriptor descriptor{};
    if (libusb_get_device_descriptor(device, &descriptor) == 0) {
        info.id = {descriptor.idVendor, descriptor.idProduct};
    }
    info.error = ReadInterfaces(device, info.interfaces);
    return info;
}

class LibusbDevice final : public UsbDevice {
public:
    LibusbDevice(Context context, Handle handle)
        : context_(std::move(context)), handle_(std::move(handle)) {
        // A kernel driver that holds the interface is detached, and attached again afterwards.
        libusb_set_auto_detach_kernel_driver(handle_.get(), 1);
    }
    ~LibusbDevice() override { ReleaseInterface(); }
    LibusbDevice(const LibusbDevice&) = delete;
    LibusbDevice& operator=(const LibusbDevice&) = delete;

    bool SelectInterface() override;
    bool ResetPipe(std::uint8_t endpoint) override {
        return libusb_clear_halt(handle_.get(), endpoint) == 0;
    }
    Transfer Write(std::uint8_t endpoint, std::span<const std::uint8_t> bytes) override {
        // The library takes one pointer type for both directions, and only reads from it when
        // sending.
        return Move(endpoint, const_cast<std::uint8_t*>(bytes.data()), bytes.size());
    }
    Transfer Read(std::uint8_t endpoint, std::span<std::uint8_t> into) override {
        return Move(endpoint, into.data(), into.size());
    }

private:
    Transfer Move(std::uint8_t endpoint, std::uint8_t* bytes, std::size_t length);
    void ReleaseInterface() {
        if (claimed_ >= 0) {
            libusb_release_interface(handle_.get(), claimed_);
            claimed_ = -1;
        }
    }

    Context context_; // outlives the handle
    Handle handle_;
    int claimed_ = -1; // number of the claimed interface
};

bool LibusbDevice::SelectInterface() {
    ReleaseInterface();
    std::vector<UsbInterface> interfaces;
    if (ReadInterfaces(libusb_get_device(handle_.get()), interfaces) != 0) {
        return false;
    }
    const UsbInterface* chosen = ChooseInterface(interfaces, true);
    if (chosen == nullptr || libusb_claim_interface(handle_.get(), chosen->number) != 0) {
        return false;
    }
    claimed_ = chosen->number;
    return libusb_set_interface_alt_setting(handle_.get(), chosen->number, chosen->alternate) == 0;
}

UsbDevice::Transfer LibusbDevice::Move(std::uint8_t endpoint, std::uint8_t* bytes,
                                       std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return {false, LIBUSB_ERROR_INVALID_PARAM, 0};
    }
    int moved = 0;
    const int error = libusb_bulk_transfer(handle_.get(), endpoint, bytes, static_cast<int>(length),
                                           &moved, transferLimitMs);
    return {error == 0, error, static_cast<std::size_t>(std::max(moved, 0)),
            error == LIBUSB_ERROR_NO_DEVICE};
}

class LibusbBus final : public UsbBus {
public:
    UsbSearch Find(const std::string& wanted) override;
    std::unique_ptr<UsbDevice> Open(const std::string& path) override;

private:
    bool Ready();

    Context context_;
};

/// Called at every use: USB may become available after the program has started.
bool LibusbBus::Ready() {
    libusb_context* context = nullptr;
    if (!context_ && libusb_init(&context) == 0) {
        context_ = Context(context, ContextCloser{});
    }
    return context_ != nullptr;
}

UsbSearch LibusbBus::Find(const std::string& wanted) {
    if (!Ready()) {
        return {};
    }
    std::vector<UsbDeviceInfo> present;
    for (libusb_device* device : DeviceList(context_)) {
        present.push_back(DescribeDevice(device));
    }
    return ChooseDevice(present, wanted);
}

std::unique_ptr<UsbDevice> LibusbBus::Open(const std::string& path) {
    if (!Ready()) {
        return nullptr;
    }
    const DeviceList list(context_);
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](libusb_device* device) { return PathOf(device) == path; });
    libusb_device_handle* handle = nullptr;
    if (found == list.end() || libusb_open(*found, &handle) != 0) {
        return nullptr;
    }
    return std::make_unique<LibusbDevice>(context_, Handle(handle));
}

} // namespace

std::unique_ptr<UsbBus> OpenUsbBus() {
    return std::make_unique<LibusbBus>();
}

} // namespace busquill
