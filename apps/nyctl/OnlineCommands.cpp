// The commands about the vendor's online service, which need no central server.
#include "apps/nyctl/CommandTools.h"
#include "NyServer/online/NyFctWebService.h"

namespace apps::nyctl {

namespace {

// Returns an error message, empty for "production", "test" and an http address.
std::string checkService(const std::string& service) {
    const bool isAddress = service.rfind("http://", 0) == 0 || service.rfind("https://", 0) == 0;
    if (service == "production" || service == "test" || isAddress) return {};
    return service + " is not production, test or an http address";
}

std::shared_ptr<std::string> serviceOption(CLI::App& command) {
    auto service = std::make_shared<std::string>("production");
    command
        .add_option("--service", *service,
                    "production, test or an http address; a missing final slash is added")
        ->check(checkService)
        ->capture_default_str();
    return service;
}

// Selects a service while it exists, and production again afterwards.
class ChosenService {
  public:
    explicit ChosenService(const std::string& service) : m_address(fromUtf8(service)) {
        if (service == "production" || service == "test") {
            NyFctWebService::connectToTestBase(service == "test");
            return;
        }
        if (service.back() != '/') m_address += _T('/');
        NyFctWebService::setCustomServerUrl(m_address);
    }
    ~ChosenService() { NyFctWebService::connectToTestBase(false); }
    ChosenService(const ChosenService&) = delete;
    ChosenService& operator=(const ChosenService&) = delete;

  private:
    CString m_address;
};

ExitStatus noService(const std::string& service) {
    Output::complain("no reply from the service " + service);
    return exitNoReply;
}

Run defineOnlinePing(CLI::App& command) {
    return [service = serviceOption(command)](Context& context) {
        const ChosenService chosen(*service);
        if (!NyFctWebService::pingWebServer()) return noService(*service);
        context.output.record({{"service", *service}, {"reachable", true}});
        return exitYes;
    };
}

Run defineVersion(CLI::App& command) {
    return [service = serviceOption(command),
            id = argument<LONG>(command, "ID", "The product's number")](Context& context) {
        const ChosenService chosen(*service);
        const CString version = NyFctWebService::getOnlineVersionFromSoftwareID(*id);
        if (!version.IsEmpty()) {
            context.output.record({{"product", *id}, {"version", toUtf8(version)}});
            return exitYes;
        }
        if (!NyFctWebService::pingWebServer()) return noService(*service);
        Output::complain("no version of product " + std::to_string(*id) +
                         ", or no production service, which is tried first");
        return exitNo;
    };
}

}  // namespace

const std::vector<Command> kOnlineCommands = {
    {"ping", "Check whether the service can be reached: 0 yes, 3 no", "online ping --service test",
     &defineOnlinePing},
    {"version",
     "Show the version published for a product: 0 found, 1 none or no production service, 3 no "
     "reply",
     "online version 42", &defineVersion},
};

}  // namespace apps::nyctl
