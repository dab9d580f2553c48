/// Where each family records the lines of its bus. Control lines are electrical levels: 0 is
/// asserted.
#pragma once

namespace boardsim {

namespace pci {

enum PciBit : int {
    bitAd = 0,
    bitCbe = 64,
    bitFrame = 72,
    bitTrdy = 73,
    bitIrdy = 74,
    bitStop = 75,
    bitDevsel = 76,
    bitIdsel = 77,
    bitRst = 79,
    bitReq = 82,
    bitGnt = 83,
    bitReq64 = 84,
    bitAck64 = 85,
    bitPar = 86,
    bitPar64 = 87,
    bitIntA = 88,
    bitAttribute = 93, // PCI-X
    bitAddress = 95,
    bitExt = 96,
    bitTms = 107,
    bitClk = 109,
};

constexpr int extBits = 8; // external inputs

enum Command : unsigned {
    cmdIntAck = 0x0,
    cmdSpecial = 0x1,
    cmdIoRead = 0x2,
    cmdIoWrite = 0x3,
    cmdMemRead = 0x6,
    cmdMemWrite = 0x7,
    cmdConfigRead = 0xA,
    cmdConfigWrite = 0xB,
    cmdMemReadMultiple = 0xC,
    cmdDualAddress = 0xD,
    cmdMemReadLine = 0xE,
    cmdMemWriteInvalidate = 0xF,
};

} // namespace pci

namespace vme {

/// Where a tier of the family records its lines.
struct VmeBits {
    int am, bbsy, bclr, as, ds, dtack, berr, lword, write, sysreset, br, bg, irq, iack, iacki, ext;
    int extWidth;
};

constexpr VmeBits plainBits = {64, 70, 71, 72, 73, 75, 76, 77, 78, 79, 80, 84, 88, 95, 108, 96, 8};
constexpr VmeBits larkBits = {88, 69, 84, 96, 85, 71, 70, 98, 97, 64, 65, 80, 72, 79, 87, 100, 4};

constexpr int bitAddress = 0;
constexpr int bitData = 32;

} // namespace vme

namespace vsb {

// Address and data share the lower lines.
enum VsbBit : int {
    bitAd = 0,
    bitSpace = 64,
    bitSize = 66,
    bitWr = 68,
    bitAc = 71,
    bitPas = 72,
    bitAsack = 73,
    bitAck = 75,
    bitErr = 76,
    bitDs = 79,
    bitBreq = 80,
    bitBusy = 83,
    bitGa = 84,
    bitAddress = 95,
    bitExt = 96,
    bitExp = 136,
};

constexpr int extBits = 8;

enum Space : unsigned { spaceAlternate = 1, spaceIo = 2, spaceSystem = 3 };

} // namespace vsb

} // namespace boardsim
