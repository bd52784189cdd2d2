#include "tests/messages/RecordTable.h"

#include "messages/GlobalOptions.h"
#include "messages/GlobalOptions2.h"
#include "messages/Processes.h"
#include "messages/SNMPmessage.h"

namespace Messages::Tests {

namespace {

using Product = SNMPmessage::Product;
using Streams = SNMPmessage::Streams;
using StreamMonitors = SNMPmessage::StreamMonitors;
using Sources = SNMPmessage::AudioSources;

std::vector<ExpectedRecord> MakeFlatRecords() {
  return {
      Expect<Confirmation>("Confirmation", DecodeStruct_Confirmation,
                           {
                               EXPECT_INTEGER(Confirmation, result),
                               EXPECT_TEXT(Confirmation, message, 256),
                           }),
      Expect<GetAudioOutputDeviceList>("GetAudioOutputDeviceList",
                                       DecodeStruct_GetAudioOutputDeviceList,
                                       {
                                           EXPECT_TEXT(GetAudioOutputDeviceList, procName, 64),
                                       }),
      Expect<GlobalOptions>("GlobalOptions", DecodeStruct_GlobalOptions,
                            {
                                EXPECT_TEXT(GlobalOptions, adminpass, 256),
                                EXPECT_TEXT(GlobalOptions, adminuser, 256),
                                EXPECT_TEXT(GlobalOptions, fromemail, 256),
                                EXPECT_TEXT(GlobalOptions, fromname, 256),
                                EXPECT_TEXT(GlobalOptions, notifyemail, 256),
                                EXPECT_TEXT(GlobalOptions, smtpusername, 256),
                                EXPECT_TEXT(GlobalOptions, smtppassword, 256),
                                EXPECT_TEXT(GlobalOptions, smtpserver, 256),
                                EXPECT_INTEGER(GlobalOptions, reconnecttimeout),
                                EXPECT_INTEGER(GlobalOptions, emailonerror),
                                EXPECT_INTEGER(GlobalOptions, httpport),
                                EXPECT_INTEGER(GlobalOptions, httpsport),
                                EXPECT_INTEGER(GlobalOptions, smtpserverport),
                                EXPECT_INTEGER(GlobalOptions, streamserverport),
                                EXPECT_INTEGER(GlobalOptions, usessl),
                                EXPECT_INTEGER(GlobalOptions, waitintervalsec),
                            }),
      Expect<GlobalOptions2>("GlobalOptions2", DecodeStruct_GlobalOptions2,
                             {
                                 EXPECT_TEXT(GlobalOptions2, adminpass, 256),
                                 EXPECT_INTEGER(GlobalOptions2, blankadminpass),
                                 EXPECT_TEXT(GlobalOptions2, adminuser, 256),
                                 EXPECT_TEXT(GlobalOptions2, qxremotepass, 256),
                                 EXPECT_INTEGER(GlobalOptions2, blankqxremotepass),
                                 EXPECT_TEXT(GlobalOptions2, fromemail, 256),
                                 EXPECT_TEXT(GlobalOptions2, fromname, 256),
                                 EXPECT_TEXT(GlobalOptions2, notifyemail, 256),
                                 EXPECT_TEXT(GlobalOptions2, smtpusername, 256),
                                 EXPECT_TEXT(GlobalOptions2, smtppassword, 256),
                                 EXPECT_TEXT(GlobalOptions2, smtpserver, 256),
                                 EXPECT_TEXT(GlobalOptions2, syslogserver, 256),
                                 EXPECT_TEXT(GlobalOptions2, streamsfolder, 512),
                                 EXPECT_TEXT(GlobalOptions2, commonfolder, 512),
                                 EXPECT_TEXT(GlobalOptions2, tdadapter, 64),
                                 EXPECT_INTEGER(GlobalOptions2, reconnecttimeout),
                                 EXPECT_INTEGER(GlobalOptions2, emailonerror),
                                 EXPECT_INTEGER(GlobalOptions2, httpport),
                                 EXPECT_INTEGER(GlobalOptions2, httpsport),
                                 EXPECT_INTEGER(GlobalOptions2, smtpserverport),
                                 EXPECT_INTEGER(GlobalOptions2, streamserverport),
                                 EXPECT_INTEGER(GlobalOptions2, httpresourceserverport),
                                 EXPECT_INTEGER(GlobalOptions2, usessl),
                                 EXPECT_INTEGER(GlobalOptions2, waitintervalsec),
                                 EXPECT_INTEGER(GlobalOptions2, daystokeeplogs),
                             }),
      Expect<UpdateGlobalOptions>("UpdateGlobalOptions", DecodeStruct_UpdateGlobalOptions,
                                  {
                                      EXPECT_TEXT(UpdateGlobalOptions, adminpass, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, adminuser, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, fromemail, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, fromname, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, notifyemail, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, smtpusername, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, smtppassword, 256),
                                      EXPECT_TEXT(UpdateGlobalOptions, smtpserver, 256),
                                      EXPECT_INTEGER(UpdateGlobalOptions, reconnecttimeout),
                                      EXPECT_INTEGER(UpdateGlobalOptions, emailonerror),
                                      EXPECT_INTEGER(UpdateGlobalOptions, httpport),
                                      EXPECT_INTEGER(UpdateGlobalOptions, httpsport),
                                      EXPECT_INTEGER(UpdateGlobalOptions, smtpserverport),
                                      EXPECT_INTEGER(UpdateGlobalOptions, streamserverport),
                                      EXPECT_INTEGER(UpdateGlobalOptions, usessl),
                                      EXPECT_INTEGER(UpdateGlobalOptions, waitintervalsec),
                                  },
                                  true),
      Expect<UpdateGlobalOptions2>("UpdateGlobalOptions2", DecodeStruct_UpdateGlobalOptions2,
                                   {
                                       EXPECT_TEXT(UpdateGlobalOptions2, adminpass, 256),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, blankadminpass),
                                       EXPECT_TEXT(UpdateGlobalOptions2, adminuser, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, qxremotepass, 256),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, blankqxremotepass),
                                       EXPECT_TEXT(UpdateGlobalOptions2, fromemail, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, fromname, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, notifyemail, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, smtpusername, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, smtppassword, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, smtpserver, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, syslogserver, 256),
                                       EXPECT_TEXT(UpdateGlobalOptions2, streamsfolder, 512),
                                       EXPECT_TEXT(UpdateGlobalOptions2, tdadapter, 64),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, reconnecttimeout),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, emailonerror),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, httpport),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, httpsport),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, smtpserverport),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, streamserverport),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, httpresourceserverport),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, usessl),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, waitintervalsec),
                                       EXPECT_INTEGER(UpdateGlobalOptions2, daystokeeplogs),
                                   },
                                   true),
      Expect<ProductVersion>("ProductVersion", DecodeStruct_ProductVersion,
                             {
                                 EXPECT_TEXT(ProductVersion, productname, 256),
                                 EXPECT_TEXT(ProductVersion, productversion, 16),
                                 EXPECT_TEXT(ProductVersion, productbuild, 16),
                                 EXPECT_TEXT(ProductVersion, productcopyright, 128),
                             }),
      Expect<ProcessInfo>("ProcessInfo", DecodeStruct_ProcessInfo,
                          {
                              EXPECT_TEXT(ProcessInfo, version, 64),
                              EXPECT_TEXT(ProcessInfo, buildDate, 64),
                              EXPECT_TEXT(ProcessInfo, cpuKernelPercent, 64),
                              EXPECT_TEXT(ProcessInfo, cpuUserPercent, 64),
                              EXPECT_TEXT(ProcessInfo, workingSetBytes, 64),
                              EXPECT_INTEGER(ProcessInfo, handleCount),
                          }),
      Expect<Product>("Product", Decode<Product>,
                      {
                          EXPECT_TEXT(Product, Name, 128),
                          EXPECT_TEXT(Product, Version, 64),
                      }),
      Expect<Streams>("Streams", DecodeStruct_Streams,
                      {
                          EXPECT_COUNT(Streams, Count),
                          EXPECT_COUNT(Streams, Errors),
                      }),
      Expect<StreamMonitors>("StreamMonitors", DecodeStruct_StreamMonitors,
                             {
                                 EXPECT_COUNT(StreamMonitors, Count),
                                 EXPECT_COUNT(StreamMonitors, Errors),
                                 EXPECT_COUNT(StreamMonitors, Silence),
                             }),
      Expect<Sources>("AudioSources", DecodeStruct_AudioSources,
                      {
                          EXPECT_COUNT(Sources, Count),
                          EXPECT_COUNT(Sources, Errors),
                          EXPECT_COUNT(Sources, Silence),
                      }),
  };
}

}  // namespace

const std::vector<ExpectedRecord>& FlatRecords() {
  static const std::vector<ExpectedRecord> records = MakeFlatRecords();
  return records;
}

}  // namespace Messages::Tests
