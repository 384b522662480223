// What a walk through rsvp-agentx is measured against: the same rows in a plain table of Net-SNMP, held in memory, in
// a subagent that does nothing else. Lines of standard input are its cells: the column, the syntax, the value, and
// the numbers of the index.
//
//     plain_table AGENTX_ADDRESS ENTRY COLUMNS <CELLS
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <cstdlib>
#include <deque>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct PlainCell {
    u_char type;
    long number;
    std::string octets;
    std::vector<oid> name;
};
using PlainRow = std::map<unsigned, PlainCell>;

std::vector<oid> NumbersOf(std::string text)
{
    for (char &c : text)
        c = c == '.' ? ' ' : c;
    std::istringstream in(text);
    std::vector<oid> numbers;
    for (oid number = 0; in >> number;)
        numbers.push_back(number);
    return numbers;
}

PlainCell CellFrom(const std::string &type, const std::string &value)
{
    static const std::map<std::string, u_char> types{
        {"INTEGER", ASN_INTEGER}, {"Gauge32", ASN_UNSIGNED}, {"Counter32", ASN_COUNTER}, {"ticks", ASN_TIMETICKS}};
    if (type == "OID")
        return {ASN_OBJECT_ID, 0, {}, NumbersOf(value)};
    const auto number = types.find(type);
    if (number != types.end())
        return {number->second, std::strtol(value.c_str(), nullptr, 10), {}, {}};
    std::string octets;
    for (size_t i = 0; i + 1 < value.size(); i += 2)
        octets += static_cast<char>(std::strtol(value.substr(i, 2).c_str(), nullptr, 16));
    return {ASN_OCTET_STR, 0, octets, {}};
}

int Answer(netsnmp_mib_handler *, netsnmp_handler_registration *, netsnmp_agent_request_info *info,
           netsnmp_request_info *requests)
{
    for (; requests != nullptr; requests = requests->next) {
        const auto *row = static_cast<const PlainRow *>(netsnmp_tdata_extract_entry(requests));
        const netsnmp_table_request_info *asked = netsnmp_extract_table_info(requests);
        const auto cell = row == nullptr ? PlainRow::const_iterator() : row->find(asked->colnum);
        if (row == nullptr || cell == row->end()) {
            netsnmp_set_request_error(info, requests, SNMP_NOSUCHINSTANCE);
            continue;
        }
        const PlainCell &found = cell->second;
        if (found.type == ASN_OCTET_STR)
            snmp_set_var_typed_value(requests->requestvb, found.type, found.octets.data(), found.octets.size());
        else if (found.type == ASN_OBJECT_ID)
            snmp_set_var_typed_value(requests->requestvb, found.type, found.name.data(),
                                     found.name.size() * sizeof(oid));
        else
            snmp_set_var_typed_value(requests->requestvb, found.type, &found.number, sizeof(found.number));
    }
    return SNMP_ERR_NOERROR;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::cerr << "usage: plain_table AGENTX_ADDRESS ENTRY COLUMNS <CELLS\n";
        return 2;
    }
    setenv("MIBS", "", 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, "/dev/null");
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, argv[1]);
    netsnmp_enable_subagent();
    init_agent("plain_table");

    std::map<std::vector<oid>, PlainRow> rows;
    unsigned column = 0;
    for (std::string type, value, index; std::cin >> column >> type >> value >> index;)
        rows[NumbersOf(index)][column] = CellFrom(type, value);
    netsnmp_tdata *table = netsnmp_tdata_create_table("plain", 0);
    for (auto &[index, cells] : rows) {
        netsnmp_tdata_row *row = netsnmp_tdata_create_row();
        row->data = &cells;
        for (oid number : index) {
            auto part = static_cast<u_long>(number);
            netsnmp_tdata_row_add_index(row, ASN_UNSIGNED, &part, sizeof(part));
        }
        netsnmp_tdata_add_row(table, row);
    }
    std::vector<oid> place = NumbersOf(argv[2]);
    place.pop_back();
    netsnmp_table_registration_info information{}; // a signal ends the program, so Net-SNMP never frees it
    netsnmp_table_registration_info *const about = &information;
    for (size_t i = 0; i < (rows.empty() ? 0 : rows.begin()->first.size()); ++i)
        netsnmp_table_helper_add_index(about, ASN_UNSIGNED);
    about->min_column = 1;
    about->max_column = static_cast<u_int>(std::strtoul(argv[3], nullptr, 10));
    netsnmp_handler_registration *registration =
        netsnmp_create_handler_registration("plain", Answer, place.data(), place.size(), HANDLER_CAN_RONLY);
    if (netsnmp_tdata_register(registration, table, about) != MIB_REGISTERED_OK)
        return 1;
    init_snmp("plain_table");
    for (;;)
        agent_check_and_process(1);
}
