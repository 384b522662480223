// Reads the command line and sets the daemon up accordingly. Messages name the option that is wrong.
#include "host/daemon/options.h"

#include "host/daemon/decode.h"
#include "host/daemon/scenario/generator.h"
#include "host/daemon/scenario/scenario.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>

namespace rsvpsimd {

constexpr std::string_view kVersion = "rsvpsimd " RSVPSIMD_VERSION;

namespace {

constexpr auto kFooter = R"(Examples:
  rsvpsimd --scenario demo.toml --trace
  rsvpsimd --rows psb=100000 --rows tunnel=1000
  rsvpsimd --fault late=200,class=3,op=4,item=8,once --fault close,class=0
  rsvpsimd --decode rsvpsimd.pcapng --json

Exit status: 0 ended by a signal, or the check went well; 2 wrong usage, scenario or capture; 3 the host directory cannot
be used or another daemon has it; 4 ended by the fault "exit".)";

std::string_view OrderName(Order order)
{
    switch (order) {
    case Order::Network:
        return "network";
    case Order::Address:
        return "address";
    case Order::Raw:
        return "raw";
    case Order::Float:
        return "float";
    case Order::Rate:
        return "rate";
    }
    return "";
}

} // namespace

std::optional<Options> ReadOptions(int argc, char **argv, int &exitStatus)
{
    Options options;
    std::string traceFile;
    std::string captureFile;
    CLI::App app("A simulated signalling daemon: answers every request of the management protocol.", "rsvpsimd");
    app.footer(kFooter);
    app.set_version_flag("--version", std::string(kVersion));
    app.add_option("--host-dir", options.hostDirectory, "directory that plays the device")->type_name("DIR");
    app.add_option("--scenario", options.scenario, "what the tables hold (TOML)")->type_name("FILE");
    app.add_option("--rows", options.rows, "make N rows of a kind by number")
        ->type_name("KIND=N")
        ->expected(1)
        ->take_all();
    app.add_option("--fault", options.faults, "misbehave for the requests that it names")
        ->type_name("SPEC")
        ->expected(1)
        ->take_all();
    CLI::Option *trace =
        app.add_option("--trace", traceFile, "print every frame in words, to standard error or to a file")
            ->type_name("[FILE]")
            ->expected(0, 1);
    CLI::Option *capture = app.add_option("--capture", captureFile,
                                          "keep every frame in a pcapng file, of the host directory or this one")
                               ->type_name("[FILE]")
                               ->expected(0, 1);
    app.add_flag("--capture-secrets", options.captureSecrets, "do not mask authentication keys in it")
        ->needs(capture);
    CLI::Option *decode =
        app.add_option("--decode", options.decode, "print a capture, a line a frame, and end")->type_name("FILE");
    app.add_flag("--json", options.json, "each line of it a JSON object with all fields")->needs(decode);
    app.add_option("--ready-fd", options.readyFd, "write READY to this descriptor when it listens, and close it")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    CLI::Option *generate = app.add_option("--generate", "print the scenario of a network that is made up")
                                ->type_name("network")
                                ->check(CLI::IsMember({"network"}));
    for (const NetworkNumber &number : kNetworkNumbers)
        app.add_option(fmt::format("--{}", number.name), options.network.*number.member, std::string(number.help))
            ->type_name("N")
            ->check(CLI::Range(number.least, number.most))
            ->needs(generate);
    app.add_flag("--serve", options.serve, "serve what is generated instead of printing it")->needs(generate);
    app.add_flag("--check", options.check, "read everything, answer nothing");
    app.add_flag("--list-layouts", options.listLayouts, "print the fields of every value and key");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        exitStatus = app.exit(error);
        return std::nullopt;
    }
    options.generate = generate->count() != 0;
    if (trace->count() != 0)
        options.trace = traceFile;
    if (capture->count() != 0)
        options.capture = captureFile;
    return options;
}

Setup ReadSetup(const Options &options)
{
    Setup setup;
    if (!options.scenario.empty())
        setup.behaviour = ReadScenario(setup.device, options.scenario);
    try {
        if (options.generate)
            AddNetwork(setup.device, options.network);
    } catch (const std::invalid_argument &error) {
        throw std::runtime_error(fmt::format("--generate: {}", error.what()));
    }
    try {
        for (const std::string &rows : options.rows)
            MakeRows(setup.device, rows);
    } catch (const std::invalid_argument &error) {
        throw std::runtime_error(fmt::format("--rows: {}", error.what()));
    }
    try {
        for (const std::string &fault : options.faults)
            setup.behaviour.faults.push_back(ParseFault(fault));
    } catch (const std::invalid_argument &error) {
        throw std::runtime_error(fmt::format("--fault: {}", error.what()));
    }
    return setup;
}

void ListLayouts()
{
    for (const Layout &layout : AllLayouts()) {
        fmt::print("{} ({} bytes)\n", layout.name, layout.size);
        for (const Field &field : layout.fields) {
            std::string form;
            if (field.form)
                form = fmt::format("  {} {} {}", field.form->field, field.form->among ? "is" : "is not",
                                   fmt::join(field.form->kinds, " or "));
            fmt::print("  {:5} {:3} x {:2}  {:8} {}{}\n", field.offset, field.width, field.count,
                       OrderName(field.order), field.name, form);
        }
    }
    for (const ListSpec &list : kListSpecs)
        fmt::print("{} ({} bytes of count, then {})\n", list.name, list.countWidth, list.entry->name);
}

void PrintCapture(const Options &options)
{
    std::ifstream file(options.decode, std::ios::binary);
    if (!file)
        throw std::runtime_error(fmt::format("{}: {}", options.decode, std::strerror(errno)));
    const auto check = [](bool written) {
        if (!written)
            throw std::runtime_error(fmt::format("standard output: {}", std::strerror(errno)));
    };
    try {
        Decode(file, options.json ? DecodeForm::Json : DecodeForm::Words,
               [&](const std::string &line) { check(std::puts(line.c_str()) >= 0); });
    } catch (const CaptureError &error) {
        check(std::fflush(stdout) == 0); // the frames before it come first
        throw std::runtime_error(fmt::format("{}: {}", options.decode, error.what()));
    }
    check(std::fflush(stdout) == 0);
}

void PrintGenerated(const Options &options)
{
    PrintNetwork(options.network, [](const std::string &text) { fmt::print("{}", text); });
    if (std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "standard output");
}

} // namespace rsvpsimd
