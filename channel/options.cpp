// Reads the first plug-in option of the configuration file with the platform's option reader.
#include "rsvp_mor/channel.h"

#include "platform/options.h"

uint32_t RSVP_Opt_Parse(void *target, void *table)
{
    void *file = PLUGIN_OptInit("/etc/te.conf");
    if (file == nullptr)
        return RSVP_MOR_ERR_NOT_EXIST;

    char buffer[128];
    buffer[0] = '\0';
    uint32_t word = 0;
    void *option = PLUGIN_GetNextPlugOpt(file, buffer, &word);
    const uint32_t status = option == nullptr ? RSVP_MOR_ERR_FAIL : OPT_ParseEx(word, option, table, target);
    PLUGIN_OptFini(file);
    return status;
}
