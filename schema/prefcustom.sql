-- prefcustom.dat: the prefecture forms, one table a form, rows owned by a customer.
-- Dates are stored as text YYYY-MM-DD HH:MM:SS in columns declared DATETIME.

CREATE TABLE [t12_BUPPINNONYU] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_BUPPINNONYU_customer] ON [t12_BUPPINNONYU] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t12_GIJUTSUSHAKEIREKI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_GIJUTSUSHAKEIREKI_customer] ON [t12_GIJUTSUSHAKEIREKI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t12_GYOMUITAKU] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_GYOMUITAKU_customer] ON [t12_GYOMUITAKU] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t12_SENNINRYAKUREKI_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_SENNINRYAKUREKI_MAIN_customer] ON [t12_SENNINRYAKUREKI_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t12_SENNINRYAKUREKI_SHOBATSU] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_SENNINRYAKUREKI_SHOBATSU_customer] ON [t12_SENNINRYAKUREKI_SHOBATSU] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t12_SENNINRYAKUREKI_SHOKUREKI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t12_SENNINRYAKUREKI_SHOKUREKI_customer] ON [t12_SENNINRYAKUREKI_SHOKUREKI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_HENKOTODOKE] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_HENKOTODOKE_customer] ON [t27_HENKOTODOKE] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_JITSUMU_MOSHITATE_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_JITSUMU_MOSHITATE_MAIN_customer] ON [t27_JITSUMU_MOSHITATE_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_JITSUMU_MOSHITATE_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_JITSUMU_MOSHITATE_SUB_customer] ON [t27_JITSUMU_MOSHITATE_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_KEISHIN_HYOSHI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_KEISHIN_HYOSHI_customer] ON [t27_KEISHIN_HYOSHI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_KESSAN_HENKOTODOKE] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_KESSAN_HENKOTODOKE_customer] ON [t27_KESSAN_HENKOTODOKE] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_KYOKA_SHINSEI_HYOSHI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_KYOKA_SHINSEI_HYOSHI_customer] ON [t27_KYOKA_SHINSEI_HYOSHI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_TEISEI_TODOKEDESHO_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_TEISEI_TODOKEDESHO_MAIN_customer] ON [t27_TEISEI_TODOKEDESHO_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t27_TEISEI_TODOKEDESHO_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t27_TEISEI_TODOKEDESHO_SUB_customer] ON [t27_TEISEI_TODOKEDESHO_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t28_HENKOTODOKE] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t28_HENKOTODOKE_customer] ON [t28_HENKOTODOKE] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t28_KYOKA_SHINSEI_HYOSHI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t28_KYOKA_SHINSEI_HYOSHI_customer] ON [t28_KYOKA_SHINSEI_HYOSHI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t28_SHOMEINEGAI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t28_SHOMEINEGAI_customer] ON [t28_SHOMEINEGAI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t29_HENKOTODOKE] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t29_HENKOTODOKE_customer] ON [t29_HENKOTODOKE] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t29_KEISHIN_CHOSHO] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t29_KEISHIN_CHOSHO_customer] ON [t29_KEISHIN_CHOSHO] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t42_SHIYONIN_RYAKUREKI_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t42_SHIYONIN_RYAKUREKI_MAIN_customer] ON [t42_SHIYONIN_RYAKUREKI_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t42_SHIYONIN_RYAKUREKI_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t42_SHIYONIN_RYAKUREKI_SUB_customer] ON [t42_SHIYONIN_RYAKUREKI_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ININ_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [vno] INTEGER,
    [MakeDate] DATETIME,
    [SubShokuin] TEXT,
    [SelectDetail] INTEGER,
    [SelectSubShokuin] INTEGER,
    [PrintDate] INTEGER,
    [PrintSubShokuin] INTEGER,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ININ_MAIN_customer] ON [t99_ININ_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ININ_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [vno] INTEGER,
    [IninTitle] TEXT,
    [IninDetail0] TEXT,
    [IninDetail1] TEXT,
    [IninDetail2] TEXT,
    [IninDetail3] TEXT,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ININ_SUB_customer] ON [t99_ININ_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ISO9001ICHIRAN_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ISO9001ICHIRAN_MAIN_customer] ON [t99_ISO9001ICHIRAN_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ISO9001ICHIRAN_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ISO9001ICHIRAN_SUB_customer] ON [t99_ISO9001ICHIRAN_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ISO14001ICHIRAN_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ISO14001ICHIRAN_MAIN_customer] ON [t99_ISO14001ICHIRAN_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_ISO14001ICHIRAN_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_ISO14001ICHIRAN_SUB_customer] ON [t99_ISO14001ICHIRAN_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_KEISHIN_TEISHUTSUHYO] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_KEISHIN_TEISHUTSUHYO_customer] ON [t99_KEISHIN_TEISHUTSUHYO] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_KIKAIICHIRAN_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [vno] TEXT,
    [CorpName0] TEXT,
    [ApfName0] TEXT,
    [Post0] TEXT,
    [addr1] TEXT,
    [ReviewDate] TEXT,
    [MinCode] TEXT,
    [PmtCheck0] TEXT,
    [PmtCheck1] TEXT,
    [PmtYear] TEXT,
    [PmtNo] TEXT,
    [PromiseDate] TEXT,
    [ISO9001_Ninsho] TEXT,
    [ISO9001_Office] TEXT,
    [ISO9001_ConstOffice] TEXT,
    [ISO9001_Gyoshu] TEXT,
    [ISO9001_ValidStart] TEXT,
    [ISO9001_ValidEnd] TEXT,
    [ISO14001_Ninsho] TEXT,
    [ISO14001_Office] TEXT,
    [ISO14001_ConstOffice] TEXT,
    [ISO14001_Gyoshu] TEXT,
    [ISO14001_ValidStart] TEXT,
    [ISO14001_ValidEnd] TEXT,
    [SubmitDate] TEXT,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_KIKAIICHIRAN_MAIN_customer] ON [t99_KIKAIICHIRAN_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_KIKAIICHIRAN_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [vno] TEXT,
    [No] TEXT,
    [MachineType] TEXT,
    [MachineTypeStr] TEXT,
    [Maker] TEXT,
    [Model] TEXT,
    [SerialNum] TEXT,
    [ShoyuLease] TEXT,
    [ShoyuLeaseStr] TEXT,
    [GetDate] TEXT,
    [LeaseStart] TEXT,
    [LeaseEnd] TEXT,
    [CheckDate] TEXT,
    [JidoKoshin] TEXT,
    [Attachment] TEXT,
    [Weight] TEXT,
    [Bucket] TEXT,
    [ExpiryDate] TEXT,
    [SelfCheck] TEXT,
    [SelfCheckStr] TEXT,
    [Biko] TEXT,
    [JishuKensaKishu] TEXT,
    [LeaseType] TEXT,
    [Moushidesho] TEXT,
    [ShubetsuKikaku] TEXT,
    [Check] TEXT,
    [TeitohoHani] TEXT,
    [Abirity] TEXT,
    [KikaiSonryoKubun] TEXT,
    [SonryoCode1] TEXT,
    [SonryoCode2] TEXT,
    [SonryoCode3] TEXT,
    [HaiGas] TEXT,
    [MachineName] TEXT,
    [SelfCheckNo] TEXT,
    [CheckTarget] TEXT,
    [OnRoad] TEXT,
    [UserName] TEXT,
    [CheckCorpName] TEXT,
    [CheckRecord] TEXT,
    [CheckPromise] TEXT,
    [TakePicDate] TEXT,
    [MachineNum] TEXT,
    [CheckSubmitPic] TEXT,
    [GetDateNoDayFlag] TEXT,
    [LeaseStartNoDayFlag] TEXT,
    [LeaseEndNoDayFlag] TEXT,
    [CheckDateNoDayFlag] TEXT,
    [ExpiryDateNoDayFlag] TEXT,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_KIKAIICHIRAN_SUB_customer] ON [t99_KIKAIICHIRAN_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_KYOKA_KAKUNINSHOMEI_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_KYOKA_KAKUNINSHOMEI_MAIN_customer] ON [t99_KYOKA_KAKUNINSHOMEI_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_KYOKA_KAKUNINSHOMEI_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_KYOKA_KAKUNINSHOMEI_SUB_customer] ON [t99_KYOKA_KAKUNINSHOMEI_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_PRINT_CUSTOMERDATA] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_PRINT_CUSTOMERDATA_customer] ON [t99_PRINT_CUSTOMERDATA] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_SHINKOTEKIYO_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_SHINKOTEKIYO_MAIN_customer] ON [t99_SHINKOTEKIYO_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_SHINKOTEKIYO_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_SHINKOTEKIYO_SUB_customer] ON [t99_SHINKOTEKIYO_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t99_SYSTEM_OPTION] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t99_SYSTEM_OPTION_customer] ON [t99_SYSTEM_OPTION] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [tKAN_001_002_GIJUTSUSHOKUIN_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_tKAN_001_002_GIJUTSUSHOKUIN_MAIN_customer] ON [tKAN_001_002_GIJUTSUSHOKUIN_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [tKAN_001_002_GIJUTSUSHOKUIN_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_tKAN_001_002_GIJUTSUSHOKUIN_SUB_customer] ON [tKAN_001_002_GIJUTSUSHOKUIN_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [tKAN_KAKUNINSOFU_MAIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_tKAN_KAKUNINSOFU_MAIN_customer] ON [tKAN_KAKUNINSOFU_MAIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [tKAN_KAKUNINSOFU_SUB] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_tKAN_KAKUNINSOFU_SUB_customer] ON [tKAN_KAKUNINSOFU_SUB] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t13_BETSUTOJI_HYOSHI_CHIJI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t13_BETSUTOJI_HYOSHI_CHIJI_customer] ON [t13_BETSUTOJI_HYOSHI_CHIJI] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t13_BETSUTOJI_HYOSHI_DAIJIN] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t13_BETSUTOJI_HYOSHI_DAIJIN_customer] ON [t13_BETSUTOJI_HYOSHI_DAIJIN] (CustomerID, disabled, RecordUpdate, InetCheckDate);

CREATE TABLE [t13_HENKOTODOKE_TEISEI] (
    id INTEGER PRIMARY KEY,
    CustomerID INTEGER,
    disabled SMALLINT DEFAULT 0,
    [DataFileID] INTEGER,
    [DataFileID_KY] INTEGER,
    [DataFileIDStr] TEXT,
    [DataFileIDStr_KY] TEXT,
    RecordUpdate DATETIME,
    InetCheckDate DATETIME
);
CREATE INDEX [ix_t13_HENKOTODOKE_TEISEI_customer] ON [t13_HENKOTODOKE_TEISEI] (CustomerID, disabled, RecordUpdate, InetCheckDate);
