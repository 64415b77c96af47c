// The INI names the application's modules use and the repository serving each.
#include "Util/PersistentKeyValueMapManager.h"

namespace Norvane {
namespace Utilities {

namespace {

const IniNameEntry kIniNames[] = {
    // The application's main INI file and its setup INI, each with its own repository.
    {"ZTW.INI", "ZTW.INI.XML", false},
    {"ZTWSETUP.INI", "ZTWSETUP.INI.XML", false},

    // Payroll: eleven INI files and two logs share one repository.
    {"PAYROLL.INI", "PAYROLL.INI.XML", false},
    {"PRTAXTBL.INI", "PAYROLL.INI.XML", false},
    {"PRDEDUCT.INI", "PAYROLL.INI.XML", false},
    {"PRBENEFT.INI", "PAYROLL.INI.XML", false},
    {"PRDIRDEP.INI", "PAYROLL.INI.XML", false},
    {"PRYEAREND.INI", "PAYROLL.INI.XML", false},
    {"PRTIMECD.INI", "PAYROLL.INI.XML", false},
    {"PRSTATE.INI", "PAYROLL.INI.XML", false},
    {"PRLOCAL.INI", "PAYROLL.INI.XML", false},
    {"PRUPDATE.INI", "PAYROLL.INI.XML", false},
    {"PRREPORT.INI", "PAYROLL.INI.XML", false},
    {"PRUPDATE.LOG", "PAYROLL.INI.XML", false},
    {"PRCALC.LOG", "PAYROLL.INI.XML", false},

    // Further INI, data and log names, each in a repository of its own name.
    {"ZTBANK.INI", "ZTBANK.INI.XML", false},
    {"ZTBUDGET.INI", "ZTBUDGET.INI.XML", false},
    {"ZTCHECKS.INI", "ZTCHECKS.INI.XML", false},
    {"ZTFORMS.INI", "ZTFORMS.INI.XML", false},
    {"ZTINVOICE.INI", "ZTINVOICE.INI.XML", false},
    {"ZTREPORTS.INI", "ZTREPORTS.INI.XML", false},
    {"ZTPRINT.INI", "ZTPRINT.INI.XML", false},
    {"ZTBACKUP.INI", "ZTBACKUP.INI.XML", false},
    {"ZTIMPORT.INI", "ZTIMPORT.INI.XML", false},
    {"ZTEXPORT.INI", "ZTEXPORT.INI.XML", false},
    {"ZTNETWRK.INI", "ZTNETWRK.INI.XML", false},
    {"ZTUPDATE.INI", "ZTUPDATE.INI.XML", false},
    {"ZTTAXFRM.INI", "ZTTAXFRM.INI.XML", false},
    {"ZTINVENT.INI", "ZTINVENT.INI.XML", false},
    {"ZTESTIM.INI", "ZTESTIM.INI.XML", false},
    {"ZTSTMT.INI", "ZTSTMT.INI.XML", false},
    {"ZTLABELS.INI", "ZTLABELS.INI.XML", false},
    {"ZTEMAIL.INI", "ZTEMAIL.INI.XML", false},
    {"ZTSCHED.INI", "ZTSCHED.INI.XML", false},
    {"ZTWIZARD.INI", "ZTWIZARD.INI.XML", false},
    {"ZTTUTOR.INI", "ZTTUTOR.INI.XML", false},
    {"ZTHELP.INI", "ZTHELP.INI.XML", false},
    {"ZTREGSTR.INI", "ZTREGSTR.INI.XML", false},
    {"ZTCONVRT.INI", "ZTCONVRT.INI.XML", false},
    {"ZTSTARTUP.DAT", "ZTSTARTUP.DAT.XML", false},
    {"ZTRECENT.DAT", "ZTRECENT.DAT.XML", false},
    {"ZTSESSION.LOG", "ZTSESSION.LOG.XML", false},

    // The global application configuration always stays a real INI file.
    {"ZTGLOBALAPPCONFIG.INI", "ZTPROFILE.INI.XML", true},
};

} // namespace

const IniNameEntry* PersistentKeyValueMapManager::GetIniNameTable(std::size_t& count) {
    count = sizeof kIniNames / sizeof kIniNames[0];
    return kIniNames;
}

} // namespace Utilities
} // namespace Norvane
