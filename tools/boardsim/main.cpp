#include "board.h"
#include "deeds.h"
#include "pseudo_terminal.h"
#include "trace_writer.h"
#include "traffic.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <poll.h>
#include <sstream>
#include <thread>
#include <unistd.h>

using namespace boardsim;

namespace {

constexpr auto usage =
    "usage: boardsim [--model NAME] [--suffix N] [--buffer K] [--serial N] [--firmware TENTHS]\n"
    "                [--hardware TENTHS] [--bus-byte N] [--mhz N] [--baud N] [--family NAME]\n"
    "                [--seed N] [--samples N] [--rate N] [--link PATH] [--log FILE]\n"
    "                [--flash FILE] [--devices FILE] [--compliance \"SCRIPT\"]\n"
    "                [--anomaly-rate PERCENT] [--backplane \"FAULTS\"] [--refuse-rate]\n"
    "                [--fault \"WORDS\"]\n"
    "       boardsim record --family NAME [--seed N] [--samples N] [--trigger N] [--zoom]\n"
    "                [--lists state,waveform] [--name TEXT] [--description TEXT]\n"
    "                [--transactions FILE] [--gaps N] -o FILE\n"
    "Families: pci32 pci64 pcix vme vsb lark p2 p0.\n"
    "--transactions records transactions of every kind and writes down what they are; --gaps "
    "leaves\n"
    "out samples at N places.\n"
    "--flash keeps FILE equal to the downloaded firmware, as an Intel hex file.\n"
    "--devices takes the devices of the bus from a file as lspci -x prints it; --compliance gives\n"
    "the outcomes of tests: \"CFG3 fail 5, MST1 unknown, TGT2 slow 20, * pass\".\n"
    "--anomaly-rate is the part of the readings that report an anomaly; --backplane gives shorts "
    "and\n"
    "broken lines by their places: \"5+6, broken 9\".\n"
    "Faults, also as lines on standard input: silence, drop-ack N, wrong-ack N, wrong-close,\n"
    "short-reply N, refuse N, refuse-rate, mute N, search-busy N, scan-busy N, step-busy N,\n"
    "step-status N, stuck-bit ADDRESS, backplane-busy N, delay MS, half-frame, normal;\n"
    "anomaly-rate PERCENT and anomaly CHECK; backplane FAULTS;\n"
    "go-away pulls the cable, come-back plugs it in again.\n";

volatile std::sig_atomic_t stopped = 0;

/// "--key value" pairs and lone "--key" flags.
class Options {
public:
    Options(int argc, char** argv, int first) {
        for (int i = first; i < argc; ++i) {
            const std::string key = argv[i];
            const bool lone = key == "--zoom" || key == "--refuse-rate";
            if (!key.starts_with("-") || (!lone && i + 1 == argc)) {
                good_ = false;
                return;
            }
            values_[key] = lone ? "1" : argv[++i];
        }
    }
    [[nodiscard]] bool Good() const { return good_; }
    [[nodiscard]] std::string Text(const std::string& key, const std::string& fallback) const {
        const auto found = values_.find(key);
        return found == values_.end() ? fallback : found->second;
    }
    [[nodiscard]] long Number(const std::string& key, long fallback) const {
        const auto found = values_.find(key);
        return found == values_.end() ? fallback : std::strtol(found->second.c_str(), nullptr, 0);
    }

private:
    std::map<std::string, std::string> values_;
    bool good_ = true;
};

/// The first memory write at or after a position; the position itself if none follows.
std::size_t FindWrite(const std::vector<Record>& records, std::size_t from) {
    for (std::size_t i = from; i < records.size(); ++i) {
        if (GetBit(records[i], writeEvent.addressBit) &&
            GetField(records[i], writeEvent.commandBit, 4) == writeEvent.command) {
            return i;
        }
    }
    return from;
}

/// False, with a message, if that fails.
bool WriteFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        std::cerr << "boardsim: cannot write " << path << "\n";
    }
    return !file.fail();
}

int RecordFile(const Options& options) {
    const auto family = FamilyOf(options.Text("--family", "pci32"));
    const std::string path = options.Text("-o", "");
    const long count = options.Number("--samples", 4096);
    const long trigger = options.Number("--trigger", count / 2);
    const bool isConnector = family == Family::ConnectorP2 || family == Family::ConnectorP0;
    const bool lacksTransactions = isConnector && !options.Text("--transactions", "").empty();
    if (!family || path.empty() || count < 1 || trigger < 0 || trigger >= count ||
        lacksTransactions) {
        std::cerr << usage;
        return 2;
    }
    Recording recording;
    const bool pci = *family == Family::Pci32;
    const std::string lists = options.Text("--lists", "state,waveform");
    recording.name = options.Text("--name", "Default");
    recording.description = options.Text("--description", "Simulated bus traffic");
    recording.trigger = static_cast<std::size_t>(trigger);
    const auto seed = static_cast<std::uint32_t>(options.Number("--seed", 1));
    const std::string table = options.Text("--transactions", "");
    if (table.empty()) {
        recording.samples = MakeRecords(*family, seed, static_cast<std::size_t>(count));
    } else {
        DeedRecording deeds =
            RecordDeeds(*family, seed, static_cast<std::size_t>(count), recording.trigger,
                        static_cast<unsigned>(options.Number("--gaps", 0)));
        recording.samples = std::move(deeds.samples);
        recording.missing = std::move(deeds.missing);
        if (!WriteFile(table, deeds.table)) {
            return 1;
        }
    }
    if (pci && table.empty()) {
        recording.trigger = FindWrite(recording.samples, recording.trigger);
    }
    if (options.Number("--zoom", 0) != 0) {
        recording.zoom = MakeZoom(recording.samples, recording.trigger);
    }
    recording.pciEvents = pci;
    recording.pciStateList = pci && lists.find("state") != std::string::npos;
    recording.pciWaveformList = pci && lists.find("waveform") != std::string::npos;
    return WriteFile(path, TraceText(recording)) ? 0 : 1;
}

/// A board on a pseudo terminal, until it is stopped.
class Bench {
public:
    Bench(const Options& options, Board& board)
        : board_(board), rate_(options.Number("--rate", 0)), link_(options.Text("--link", "")),
          flash_(options.Text("--flash", "")) {
        const std::string log = options.Text("--log", "");
        if (!log.empty()) {
            log_.open(log, std::ios::binary);
        }
        board_.log = [this](const std::string& line) { Log(line); };
        board_.onFirmware = [this] { static_cast<void>(WriteFirmware()); };
        board_.faults.refuseRate = options.Number("--refuse-rate", 0) != 0;
        std::stringstream faults(options.Text("--fault", ""));
        for (std::string words; std::getline(faults, words, ',');) {
            Command(words);
        }
    }

    int Run() {
        if (!WriteFirmware() || !PlugIn()) {
            return 1;
        }
        while (stopped == 0) {
            Serve();
        }
        Unplug();
        return 0;
    }

private:
    /// Makes the line and the link to it, and prints its path.
    bool PlugIn() {
        if (line_.IsOpen()) {
            return true;
        }
        line_.Open();
        if (!line_.IsOpen()) {
            std::cerr << "boardsim: no pseudo terminal\n";
            return false;
        }
        if (!link_.empty()) {
            ::unlink(link_.c_str());
            if (::symlink(line_.Path().c_str(), link_.c_str()) != 0) {
                std::cerr << "boardsim: cannot make " << link_ << "\n";
                return false;
            }
        }
        std::cout << line_.Path() << std::endl;
        return true;
    }

    /// Takes the line away from the host. The board itself stays powered.
    void Unplug() {
        if (line_.IsOpen() && !link_.empty()) {
            ::unlink(link_.c_str());
        }
        line_.Close();
    }

    /// Replaces the file of the firmware, so that a reader finds it complete at any time.
    bool WriteFirmware() {
        if (flash_.empty()) {
            return true;
        }
        const std::string unfinished = flash_ + ".part";
        std::ofstream file(unfinished, std::ios::binary);
        file << board_.Firmware().HexText();
        file.close();
        if (!file || std::rename(unfinished.c_str(), flash_.c_str()) != 0) {
            std::cerr << "boardsim: cannot write " << flash_ << "\n";
            return false;
        }
        return true;
    }

    void Serve() {
        pollfd wanted[] = {{line_.Handle(), POLLIN, 0}, {commands_ ? STDIN_FILENO : -1, POLLIN, 0}};
        const bool sampling = board_.Sampling();
        const int ready = ::poll(wanted, 2, !sampling ? 200 : rate_ > 0 ? 2 : 0);
        if (sampling) {
            SampleBus();
        }
        sampledUpTo_ = std::chrono::steady_clock::now();
        if (ready <= 0) {
            return;
        }
        if ((wanted[1].revents & (POLLIN | POLLHUP)) != 0) {
            ReadCommands();
        }
        if (line_.IsOpen() && (wanted[0].revents & POLLIN) != 0) {
            std::uint8_t bytes[4096];
            const ssize_t count = ::read(line_.Handle(), bytes, sizeof bytes);
            for (ssize_t i = 0; i < count; ++i) {
                Take(bytes[i]);
            }
        }
    }

    /// Takes the samples of the time that has passed, or a fixed number if no rate is given.
    void SampleBus() {
        constexpr std::size_t handful = 4096;
        if (rate_ <= 0) {
            board_.SampleBus(handful);
            return;
        }
        const std::chrono::duration<double> passed =
            std::chrono::steady_clock::now() - sampledUpTo_;
        owedSamples_ += passed.count() * static_cast<double>(rate_);
        const auto due = static_cast<std::size_t>(owedSamples_);
        owedSamples_ -= static_cast<double>(due);
        board_.SampleBus(due);
    }

    void Take(std::uint8_t byte) {
        // At another rate the board sees noise, which it does not take for bytes.
        if (line_.Rate() != board_.Baud()) {
            return;
        }
        const std::vector<std::uint8_t> reply = board_.Receive(byte);
        if (!reply.empty()) {
            std::this_thread::sleep_for(delay_);
            line_.Write(reply);
        }
    }

    void ReadCommands() {
        char bytes[512];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            commands_ = false;
            return;
        }
        typed_.append(bytes, static_cast<std::size_t>(count));
        for (std::size_t end; (end = typed_.find('\n')) != std::string::npos;) {
            Command(typed_.substr(0, end));
            typed_.erase(0, end + 1);
        }
    }

    void Command(const std::string& words) {
        std::stringstream text(words);
        std::string word;
        int number = 1;
        text >> word >> number;
        number = text.fail() ? 1 : number;
        if (word == "silence") {
            board_.faults.silence = true;
        } else if (word == "drop-ack") {
            board_.faults.dropAcknowledge = number;
        } else if (word == "wrong-ack") {
            board_.faults.wrongAcknowledge = number;
        } else if (word == "refuse") {
            board_.faults.refuse = number;
        } else if (word == "wrong-close") {
            board_.faults.wrongClose = true;
        } else if (word == "short-reply") {
            board_.faults.shortReply = number;
        } else if (word == "refuse-rate") {
            board_.faults.refuseRate = true;
        } else if (word == "mute") {
            board_.faults.mute = number;
        } else if (word == "search-busy") {
            board_.faults.searchBusy = number;
        } else if (word == "step-busy") {
            board_.faults.master.busy = number;
        } else if (word == "step-status") {
            board_.faults.master.status = static_cast<std::uint8_t>(number);
        } else if (word == "stuck-bit") {
            board_.faults.master.stuck = static_cast<std::uint64_t>(number);
        } else if (word == "scan-busy") {
            board_.faults.scanBusy = number;
        } else if (word == "backplane-busy") {
            board_.faults.backplaneBusy = number;
        } else if (word == "anomaly-rate") {
            board_.anomalies.rate = number;
        } else if (word == "anomaly") {
            board_.anomalies.Find(static_cast<std::uint8_t>(number));
        } else if (word == "backplane") {
            if (!board_.backplane.TakeFaults(words.substr(words.find(word) + word.size()))) {
                std::cerr << "boardsim: unknown faults " << words << "\n";
                return;
            }
        } else if (word == "delay") {
            delay_ = std::chrono::milliseconds(number);
        } else if (word == "half-frame") {
            board_.StandInFrame();
        } else if (word == "go-away") {
            Unplug();
        } else if (word == "come-back") {
            static_cast<void>(PlugIn());
        } else if (word == "normal") {
            board_.faults = {};
            delay_ = {};
        } else {
            std::cerr << "boardsim: unknown fault " << words << "\n";
            return;
        }
        Log("fault " + words);
    }

    void Log(const std::string& line) {
        if (log_.is_open()) {
            const auto now = std::chrono::steady_clock::now() - start_;
            log_ << std::chrono::duration_cast<std::chrono::milliseconds>(now).count() << " "
                 << line << std::endl;
        }
    }

    Board& board_;
    long rate_; // samples of the bus per second; 0: as many as possible
    double owedSamples_ = 0;
    std::chrono::steady_clock::time_point sampledUpTo_ = std::chrono::steady_clock::now();
    PseudoTerminal line_;
    const std::string link_;  // a name for the line that stays the same; may be empty
    const std::string flash_; // the file of the firmware; may be empty
    std::ofstream log_;
    std::string typed_;
    bool commands_ = true;
    std::chrono::milliseconds delay_{};
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// The default traffic of a model.
std::string FamilyOfModel(const std::string& model) {
    if (model.starts_with("VSB")) {
        return "vsb";
    }
    if (!model.starts_with("VME")) {
        return "pci32";
    }
    return model.ends_with("Lark") ? "lark"
           : model.ends_with("P2") ? "p2"
           : model.ends_with("P0") ? "p0"
                                   : "vme";
}

int Simulate(const Options& options) {
    Identity identity;
    identity.model = options.Text("--model", identity.model);
    identity.suffix = static_cast<std::uint8_t>(options.Number("--suffix", identity.suffix));
    identity.bufferK = static_cast<std::uint16_t>(options.Number("--buffer", identity.bufferK));
    identity.serial = static_cast<unsigned>(options.Number("--serial", identity.serial));
    identity.firmware = static_cast<std::uint8_t>(options.Number("--firmware", identity.firmware));
    identity.hardware = static_cast<std::uint8_t>(options.Number("--hardware", identity.hardware));
    identity.busByte = static_cast<std::uint8_t>(options.Number("--bus-byte", identity.busByte));
    identity.megahertz = static_cast<std::uint8_t>(options.Number("--mhz", identity.megahertz));

    const auto family = FamilyOf(options.Text("--family", FamilyOfModel(identity.model)));
    const long count = options.Number("--samples", 4096);
    if (!family || count < 1) {
        std::cerr << usage;
        return 2;
    }
    const auto seed = static_cast<std::uint32_t>(options.Number("--seed", 1));
    auto records = MakeRecords(*family, seed, static_cast<std::size_t>(count));
    const auto trigger = static_cast<std::size_t>(count / 2);
    auto zoom = MakeZoom(records, trigger);
    Board board(identity, static_cast<int>(options.Number("--baud", 57600)), std::move(records),
                trigger, std::move(zoom), MakeTraffic(*family, seed), Comparators(*family),
                Performance(*family));
    const std::string devices = options.Text("--devices", "");
    if (!devices.empty()) {
        std::ifstream file(devices, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        if (!file) {
            std::cerr << "boardsim: cannot read " << devices << "\n";
            return 1;
        }
        board.configuration = Configuration(ParseDevices(text));
    }
    board.anomalies.rate = static_cast<int>(options.Number("--anomaly-rate", board.anomalies.rate));
    if (!board.compliance.TakeScript(options.Text("--compliance", "")) ||
        !board.backplane.TakeFaults(options.Text("--backplane", ""))) {
        std::cerr << usage;
        return 2;
    }
    return Bench(options, board).Run();
}

} // namespace

int main(int argc, char** argv) {
    const bool record = argc > 1 && std::strcmp(argv[1], "record") == 0;
    const Options options(argc, argv, record ? 2 : 1);
    if (!options.Good()) {
        std::cerr << usage;
        return 2;
    }
    const auto stop = [](int) { stopped = 1; };
    std::signal(SIGINT, stop);
    std::signal(SIGTERM, stop);
    std::signal(SIGPIPE, SIG_IGN);
    return record ? RecordFile(options) : Simulate(options);
}
